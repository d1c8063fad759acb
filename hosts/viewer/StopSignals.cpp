#include "hosts/viewer/StopSignals.h"

#include <atomic>
#include <cstdint>
#include <ctime>
#include <stdexcept>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

namespace {

volatile std::sig_atomic_t writeEnd = -1;

/// When the first one came; 0: none has.
std::atomic<std::int64_t> firstAt = {0};

std::int64_t now()
{
    timespec time = {};
    clock_gettime(CLOCK_MONOTONIC, &time);
    return std::int64_t(time.tv_sec) * 1000 + time.tv_nsec / 1000000 + 1;
}

void note(int signal)
{
    std::int64_t first = 0;
    if (firstAt.compare_exchange_strong(first, now())) {
        const char byte = 0;
        static_cast<void>(!::write(writeEnd, &byte, 1)); // a new pipe has room for one
    } else if (now() - first > StopSignals::sameRequestMilliseconds) {
        std::signal(signal, SIG_DFL);
        std::raise(signal);
    }
}

} // namespace

StopSignals::StopSignals()
{
    if (pipe2(pipe_.data(), O_CLOEXEC | O_NONBLOCK) != 0) {
        throw std::runtime_error("no pipe can be made");
    }
    writeEnd = pipe_[1];
    firstAt = 0;
    struct sigaction action = {};
    action.sa_handler = note;
    action.sa_flags = SA_RESTART;
    for (std::size_t i = 0; i < signals.size(); ++i) {
        sigaction(signals[i], &action, &previous_[i]);
    }
}

StopSignals::~StopSignals()
{
    for (std::size_t i = 0; i < signals.size(); ++i) {
        sigaction(signals[i], &previous_[i], nullptr);
    }
    writeEnd = -1;
    close(pipe_[0]);
    close(pipe_[1]);
}

bool StopSignals::raised() const
{
    pollfd state = {descriptor(), POLLIN, 0};
    return poll(&state, 1, 0) > 0;
}
