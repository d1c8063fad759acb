#include "Scene/render/OruProcessTimes.h"

#include "contracts/core/OruMemoryInfo.h"

#include <QByteArray>

#include <sys/resource.h>

namespace {

const double ticksPerSecond = 1e7;

std::int64_t ticks(const timeval& time)
{
    return static_cast<std::int64_t>(time.tv_sec) * 10000000 + static_cast<std::int64_t>(time.tv_usec) * 10;
}

} // namespace

OruProcessTimes::OruProcessTimes()
{
    rusage usage = {};
    getrusage(RUSAGE_SELF, &usage);
    kernelTime = ticks(usage.ru_stime);
    userTime = ticks(usage.ru_utime);
}

QString OruProcessTimes::performanceText() const
{
    const OruProcessTimes now;
    const double seconds =
        (static_cast<double>(now.kernelTime) - static_cast<double>(kernelTime)) / ticksPerSecond +
        (static_cast<double>(now.userTime) - static_cast<double>(userTime)) / ticksPerSecond;
    const QByteArray memory = oru::memoryInfo().toUtf8();
    return frameRateText(seconds) + QString::asprintf(" available(%s)", memory.constData());
}

QString OruProcessTimes::frameRateText(double seconds)
{
    const double fps = seconds == 0.0 ? 100.0 : 1.0 / seconds;
    return fps < 32.0 ? QString::asprintf("fps(%4.0f)", fps) : QLatin1String("fps(high)");
}
