#include "hosts/import/internal/IsolatedReader.h"

#include "contracts/core/OruMemoryInfo.h"
#include "hosts/import/internal/ModelReceiver.h"
#include "hosts/import/internal/PipeReader.h"
#include "hosts/import/internal/ReaderProcess.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>

#include <dlfcn.h>
#include <sys/resource.h>

namespace hostkit {

namespace {

constexpr qint64 megabyte = 1000000;
constexpr qint64 mostMegabytes = 1000000;
/// Where the kernel does not say how much memory there is.
constexpr std::uint64_t memoryIfUnknown = std::uint64_t(4) << 30;

/// What the machine has available, or what this process may use at most where that is less.
std::uint64_t usableMemory()
{
    const std::uint64_t known = oru::memoryAvailable();
    rlimit data = {RLIM_INFINITY, RLIM_INFINITY};
    ::getrlimit(RLIMIT_DATA, &data);
    return std::min<std::uint64_t>(known > 0 ? known : memoryIfUnknown, data.rlim_cur);
}

} // namespace

IsolatedReader::Limits IsolatedReader::limitsFor(const QString& file)
{
    const int more = static_cast<int>(std::min(QFileInfo(file).size() / megabyte, mostMegabytes));
    const std::uint64_t memory = usableMemory();
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

ModelSource IsolatedReader::read(const QString& file, const Progress& progress,
                                 const ReportShare& report) const
{
    ReaderProcess process(
        program_, {file, QString::number(limits_.processorSeconds), QString::number(limits_.readerBytes)});
    PipeReader in(process, limits_, progress);
    return ModelReceiver(in).receive(report);
}

} // namespace hostkit
