#pragma once

#include <QGuiApplication>
#include <QSize>
#include <QString>

#include <functional>
#include <vector>

namespace bench {

/// What a piece of work took, in milliseconds: on the wall, of all processors by all threads of this process,
/// the renderer's included, and by the calling thread alone. On a busy machine the last is the steadiest.
struct Cost
{
    double wall = 0.0;
    double processor = 0.0;
    double caller = 0.0;
};

using Work = std::function<void()>;

/// The three clocks as they stand.
Cost now();

template <typename Callable>
Cost measure(Callable&& work)
{
    const Cost before = now();
    work();
    const Cost after = now();
    return {after.wall - before.wall, after.processor - before.processor, after.caller - before.caller};
}

/// The costs of one piece of work, one a round.
using Costs = std::vector<Cost>;

/// Runs the pieces of work in turn, again and again, so that a busy machine is busy for all of them. One
/// round more comes first and does not count. The result has the order of `works`.
std::vector<Costs> interleave(int rounds, const std::vector<Work>& works);

/// 0 without values.
double median(std::vector<double> values);
double median(const Costs& costs, double Cost::*part);

/// Median over the rounds of what `costs` took in relation to what `base` took next to it.
double medianRatio(const Costs& costs, const Costs& base, double Cost::*part);

/// Prints one figure: name, value, unit, aim, with tabs between. No aim is given as "-".
void report(const QString& name, double value, const QString& unit, const QString& aim = QStringLiteral("-"));

/// The figures of one comparison with the bare program: its wall time, and both ratios to it.
void reportRatios(const QString& name, const Costs& costs, const Costs& bare, const QString& aim);

/// Starts this program once more, with other arguments, and gives the numbers that it prints: for what only
/// a process of its own can tell. Throws if it fails.
std::vector<double> runAlone(const QStringList& arguments);

/// Most memory that this process had since the start, or since the last forgetPeak, in MB of 10^6 bytes.
double peakMemory();
void forgetPeak();

/// Bytes in use on the heap, blocks with a mapping of their own included.
double heapBytes();

/// The framebuffer that everything is drawn to.
constexpr int frameWidth = 1280;
constexpr int frameHeight = 800;
inline QSize frameSize()
{
    return {frameWidth, frameHeight};
}

/// Runs the body of a benchmark program as its main: with an application that can make OpenGL windows. What
/// the body throws ends the program with a line on the error stream and 1.
int run(int argc, char** argv, const std::function<void(const QStringList& arguments)>& body);

} // namespace bench
