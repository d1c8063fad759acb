#include "contracts/core/OruMemoryInfo.h"

#include <array>
#include <cstddef>
#include <fstream>
#include <limits>
#include <string>

std::uint64_t oru::memoryAvailable()
{
    std::ifstream kernel("/proc/meminfo");
    std::string key;
    while (kernel >> key) {
        std::uint64_t kibibytes = 0;
        if (key == "MemAvailable:" && kernel >> kibibytes) {
            return kibibytes * 1024;
        }
        kernel.ignore(std::numeric_limits<std::streamsize>::max(), '\n');
    }
    return 0;
}

QString oru::memoryInfo()
{
    const std::uint64_t bytes = memoryAvailable();
    return bytes > 0 ? memoryText(bytes) : QStringLiteral("unknown");
}

QString oru::memoryText(std::uint64_t bytes)
{
    static constexpr std::array<const char*, 7> units = {"B", "KiB", "MiB", "GiB", "TiB", "PiB", "EiB"};
    double amount = static_cast<double>(bytes);
    std::size_t unit = 0;
    // 1023.95 would round up to 1024.0 of the smaller unit.
    while (amount >= (unit == 0 ? 1024.0 : 1023.95)) {
        amount /= 1024.0;
        ++unit;
    }
    return QString::number(amount, 'f', unit == 0 ? 0 : 1) + QLatin1Char(' ') + QLatin1String(units[unit]);
}
