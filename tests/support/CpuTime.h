#pragma once

#include <algorithm>
#include <ctime>
#include <limits>

namespace kelvartest {

/// The processor time that a piece of work takes in this thread, in seconds: the least of three times.
template <typename Prepare, typename Work>
double cpuTime(Prepare prepare, Work work)
{
    const auto now = [] {
        timespec time{};
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
    };
    double least = std::numeric_limits<double>::max();
    for (int round = 0; round < 3; ++round) {
        prepare();
        const double before = now();
        work();
        least = std::min(least, now() - before);
    }
    return least;
}

/// What ten times the work may take at most, in times of the work: more than ten, since it finds colder
/// caches, and far from the hundred of work that looks through all for each.
constexpr double linear = 40.0;

} // namespace kelvartest
