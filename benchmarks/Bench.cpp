#include "benchmarks/Bench.h"

#include "hosts/host/GlPlatform.h"

#include <QProcess>
#include <QStringList>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <exception>
#include <fstream>
#include <malloc.h>
#include <sstream>
#include <stdexcept>
#include <string>

namespace bench {

Cost now()
{
    const auto read = [](clockid_t clock) {
        timespec time{};
        clock_gettime(clock, &time);
        return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) * 1e-6;
    };
    return {read(CLOCK_MONOTONIC), read(CLOCK_PROCESS_CPUTIME_ID), read(CLOCK_THREAD_CPUTIME_ID)};
}

std::vector<Costs> interleave(int rounds, const std::vector<Work>& works)
{
    std::vector<Costs> result(works.size());
    for (int round = -1; round < rounds; ++round) {
        for (std::size_t i = 0; i < works.size(); ++i) {
            const Cost cost = measure(works[i]);
            if (round >= 0) {
                result[i].push_back(cost);
            }
        }
    }
    return result;
}

double median(std::vector<double> values)
{
    if (values.empty()) {
        return 0.0;
    }
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

double median(const Costs& costs, double Cost::*part)
{
    std::vector<double> values;
    for (const Cost& cost : costs) {
        values.push_back(cost.*part);
    }
    return median(std::move(values));
}

double medianRatio(const Costs& costs, const Costs& base, double Cost::*part)
{
    std::vector<double> values;
    for (std::size_t i = 0; i < costs.size(); ++i) {
        values.push_back(costs[i].*part / base[i].*part);
    }
    return median(std::move(values));
}

std::vector<double> runAlone(const QStringList& arguments)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.start(QGuiApplication::applicationFilePath(), arguments);
    process.waitForFinished(-1);
    if (process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0) {
        throw std::runtime_error("a program of its own has failed: " + arguments.join(' ').toStdString());
    }
    std::vector<double> numbers;
    for (const QByteArray& word : process.readAllStandardOutput().simplified().split(' ')) {
        numbers.push_back(word.toDouble());
    }
    return numbers;
}

void report(const QString& name, double value, const QString& unit, const QString& aim)
{
    const int digits = std::abs(value) < 10.0 ? 3 : 1;
    std::printf("%s\t%.*f\t%s\t%s\n", qUtf8Printable(name), digits, value, qUtf8Printable(unit),
                qUtf8Printable(aim));
    std::fflush(stdout);
}

void reportRatios(const QString& name, const Costs& costs, const Costs& bare, const QString& aim)
{
    report(name + QStringLiteral(", bare, wall"), median(bare, &Cost::wall), QStringLiteral("ms"));
    report(name + QStringLiteral(", wall"), medianRatio(costs, bare, &Cost::wall), QStringLiteral("of bare"),
           aim);
    report(name + QStringLiteral(", processor"), medianRatio(costs, bare, &Cost::processor),
           QStringLiteral("of bare"), aim);
}

double peakMemory()
{
    std::ifstream status("/proc/self/status");
    const std::string key = "VmHWM:";
    for (std::string line; std::getline(status, line);) {
        if (line.compare(0, key.size(), key) == 0) {
            double kilobytes = 0.0;
            std::istringstream(line.substr(key.size())) >> kilobytes;
            return kilobytes * 1024e-6;
        }
    }
    return 0.0;
}

void forgetPeak()
{
    std::ofstream("/proc/self/clear_refs") << "5";
}

double heapBytes()
{
    const struct mallinfo2 info = mallinfo2();
    return static_cast<double>(info.uordblks) + static_cast<double>(info.hblkhd);
}

int run(int argc, char** argv, const std::function<void(const QStringList& arguments)>& body)
{
    hostkit::GlPlatform::prepare();
    const QGuiApplication application(argc, argv);
    try {
        body(QGuiApplication::arguments().mid(1));
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s: %s\n", argv[0], error.what());
        return 1;
    }
    return 0;
}

} // namespace bench
