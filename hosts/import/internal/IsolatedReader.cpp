#include "hosts/import/internal/IsolatedReader.h"

#include "contracts/core/OruMemoryInfo.h"
#include "contracts/math/Vector3.h"
#include "hosts/import/internal/ReaderProcess.h"
#include "hosts/import/internal/ReaderProtocol.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <chrono>
#include <stdexcept>
#include <string>

#include <dlfcn.h>
#include <poll.h>
#include <unistd.h>

namespace hostkit {

using Tag = ReaderProtocol::Tag;

namespace {

constexpr int pollMilliseconds = 20;
constexpr qint64 megabyte = 1000000;
constexpr qint64 mostMegabytes = 1000000;
/// Where the kernel does not say how much memory there is.
constexpr std::uint64_t memoryIfUnknown = std::uint64_t(4) << 30;

[[noreturn]] void fail(const QString& reason)
{
    throw std::runtime_error(reason.toStdString());
}

/// What the process says, as long as it keeps to the limits.
class Reader
{
public:
    Reader(ReaderProcess& process, const IsolatedReader::Limits& limits, const Progress& progress)
        : process_(process)
        , limits_(limits)
        , progress_(progress)
        , bytesLeft_(limits.modelBytes)
        , end_(std::chrono::steady_clock::now() + std::chrono::seconds(limits.wallSeconds))
    {}

    template <typename T>
    T value()
    {
        T result{};
        bytes(&result, sizeof(result));
        return result;
    }

    template <typename Array>
    Array array()
    {
        constexpr std::size_t elementSize = sizeof(*Array().data());
        const auto count = value<std::uint64_t>();
        if (count > bytesLeft_ / elementSize) {
            failAsTooLarge(); // ahead of making room for what a reader gone mad may announce
        }
        Array result;
        result.resize(static_cast<std::size_t>(count));
        bytes(result.data(), result.size() * elementSize);
        return result;
    }

private:
    void bytes(void* data, std::size_t size)
    {
        if (size > bytesLeft_) {
            failAsTooLarge();
        }
        bytesLeft_ -= size;
        char* at = static_cast<char*>(data);
        while (size > 0) {
            await();
            const ssize_t got = ::read(process_.output(), at, size);
            if (got == 0) {
                fail(verdict());
            }
            at += got > 0 ? got : 0;
            size -= static_cast<std::size_t>(got > 0 ? got : 0);
        }
    }

    [[noreturn]] void failAsTooLarge() const
    {
        fail(QStringLiteral("the model takes more than %1, an eighth of the memory that is available")
                 .arg(oru::memoryText(limits_.modelBytes)));
    }

    /// Waits until there is something to read.
    void await() const
    {
        pollfd ready = {process_.output(), POLLIN, 0};
        do {
            if (progress_.cancelled()) {
                throw Progress::Cancelled();
            }
            if (std::chrono::steady_clock::now() > end_) {
                fail(QStringLiteral("reading it takes longer than %1 s").arg(limits_.wallSeconds));
            }
        } while (::poll(&ready, 1, pollMilliseconds) <= 0);
    }

    /// Why the process ended without a word.
    QString verdict()
    {
        switch (process_.ending()) {
        case ReaderProcess::Ending::OutOfTime:
            return QStringLiteral("damaged: reading it does not come to an end in %1 s of processor time")
                .arg(limits_.processorSeconds);
        case ReaderProcess::Ending::OutOfMemory:
            return QStringLiteral("reading it takes more memory than %1, half of what is available")
                .arg(oru::memoryText(limits_.readerBytes));
        case ReaderProcess::Ending::Killed:
            return QStringLiteral("reading it takes more memory than there is");
        case ReaderProcess::Ending::Crash:
            break;
        }
        return QStringLiteral("damaged: it takes its reader down");
    }

    ReaderProcess& process_;
    const IsolatedReader::Limits& limits_;
    const Progress& progress_;
    std::uint64_t bytesLeft_;
    std::chrono::steady_clock::time_point end_;
};

MeshSource receivePart(Reader& in)
{
    MeshSource part;
    part.name = QString::fromStdString(in.array<std::string>());
    part.material.color = QColor::fromRgb(in.value<QRgb>());
    part.positions = in.array<std::vector<Kelvar::Math::Vector3>>();
    part.normals = in.array<std::vector<Kelvar::Math::Vector3>>();
    part.colors = in.array<std::vector<uint32_t>>();
    part.indices = in.array<std::vector<uint32_t>>();
    return part;
}

std::vector<MeshSource> receive(Reader& in, const ReportShare& report)
{
    std::vector<MeshSource> parts;
    for (;;) {
        switch (in.value<Tag>()) {
        case Tag::Share:
            report(in.value<float>());
            break;
        case Tag::Part:
            parts.push_back(receivePart(in));
            break;
        case Tag::Error:
            throw std::runtime_error(in.array<std::string>());
        case Tag::Done:
            return parts;
        default:
            fail(QStringLiteral("damaged: it confuses its reader"));
        }
    }
}

} // namespace

IsolatedReader::Limits IsolatedReader::limitsFor(const QString& file)
{
    const int more = static_cast<int>(std::min(QFileInfo(file).size() / megabyte, mostMegabytes));
    const std::uint64_t known = oru::memoryAvailable();
    const std::uint64_t memory = known > 0 ? known : memoryIfUnknown;
    return {3 + more, 30 + more, memory / 2, memory / 8};
}

QString IsolatedReader::ownReader()
{
    Dl_info self;
    if (dladdr(reinterpret_cast<void*>(&IsolatedReader::ownReader), &self) == 0) {
        return QString();
    }
    const QDir folder = QFileInfo(QFile::decodeName(self.dli_fname)).dir();
    return QDir::cleanPath(folder.filePath(QStringLiteral(KELVAR_READER_FROM_LIBRARY)));
}

IsolatedReader::IsolatedReader(const Limits& limits, const QString& program)
    : limits_(limits)
    , program_(program)
{}

std::vector<MeshSource> IsolatedReader::read(const QString& file, const Progress& progress,
                                             const ReportShare& report) const
{
    ReaderProcess process(
        program_, {file, QString::number(limits_.processorSeconds), QString::number(limits_.readerBytes)});
    Reader in(process, limits_, progress);
    return receive(in, report);
}

} // namespace hostkit
