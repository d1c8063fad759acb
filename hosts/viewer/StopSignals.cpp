#include "hosts/viewer/StopSignals.h"

#include <stdexcept>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

namespace {

volatile std::sig_atomic_t writeEnd = -1;

void note(int)
{
    const char byte = 0;
    static_cast<void>(!::write(writeEnd, &byte, 1)); // a full pipe has told it already
}

} // namespace

StopSignals::StopSignals()
{
    if (pipe2(pipe_.data(), O_CLOEXEC | O_NONBLOCK) != 0) {
        throw std::runtime_error("no pipe can be made");
    }
    writeEnd = pipe_[1];
    struct sigaction action = {};
    action.sa_handler = note;
    action.sa_flags = SA_RESETHAND | SA_RESTART;
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
