#include "hosts/import/reader/ProcessorTime.h"

#include <QFileInfo>
#include <QSet>

#include <sys/resource.h>

namespace hostkit {

void ProcessorTime::allowFor(const QString& file, qint64 bytes)
{
    constexpr qint64 megabyte = 1000000;
    static QSet<QString> allowed;
    const QString name = QFileInfo(file).canonicalFilePath();
    rlimit limits = {};
    if (allowed.contains(name) || ::getrlimit(RLIMIT_CPU, &limits) != 0 || limits.rlim_cur == RLIM_INFINITY) {
        return;
    }
    allowed.insert(name);
    limits.rlim_cur += static_cast<rlim_t>(bytes / megabyte);
    ::setrlimit(RLIMIT_CPU, &limits);
}

} // namespace hostkit
