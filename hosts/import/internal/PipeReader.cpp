#include "hosts/import/internal/PipeReader.h"

#include "contracts/core/OruMemoryInfo.h"
#include "hosts/import/internal/ReaderProcess.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>

#include <poll.h>
#include <unistd.h>

namespace hostkit {

namespace {

constexpr int pollMilliseconds = 20;

[[noreturn]] void fail(const QString& reason)
{
    throw std::runtime_error(reason.toStdString());
}

} // namespace

PipeReader::PipeReader(ReaderProcess& process, const IsolatedReader::Limits& limits, const Progress& progress)
    : process_(process)
    , limits_(limits)
    , progress_(progress)
    , bytesLeft_(limits.modelBytes)
    , end_(std::chrono::steady_clock::now() + std::chrono::seconds(limits.wallSeconds))
{}

void PipeReader::expect(std::uint64_t count, std::size_t elementSize) const
{
    if (count > bytesLeft_ / elementSize) {
        failAsTooLarge();
    }
}

void PipeReader::bytes(void* data, std::size_t size)
{
    expect(size, 1);
    bytesLeft_ -= size;
    char* at = static_cast<char*>(data);
    while (size > 0) {
        if (next_ == filled_ && size >= ahead_.size()) {
            const std::size_t got = read(at, size);
            at += got;
            size -= got;
            continue;
        }
        if (next_ == filled_) {
            next_ = 0;
            filled_ = read(ahead_.data(), ahead_.size());
        }
        const std::size_t part = std::min(size, filled_ - next_);
        std::memcpy(at, ahead_.data() + next_, part);
        next_ += part;
        at += part;
        size -= part;
    }
}

/// As many bytes as there are, at least one unless the read was interrupted.
std::size_t PipeReader::read(void* data, std::size_t size)
{
    await();
    const ssize_t got = ::read(process_.output(), data, size);
    if (got == 0) {
        fail(verdict());
    }
    return static_cast<std::size_t>(std::max<ssize_t>(got, 0));
}

/// Waits until there is something to read.
void PipeReader::await() const
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
QString PipeReader::verdict()
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

void PipeReader::failAsTooLarge() const
{
    fail(QStringLiteral("the model takes more than %1, an eighth of the memory that is available")
             .arg(oru::memoryText(limits_.modelBytes)));
}

void PipeReader::failAsConfused()
{
    fail(QStringLiteral("damaged: it confuses its reader"));
}

} // namespace hostkit
