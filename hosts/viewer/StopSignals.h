#pragma once

#include <array>

#include <csignal>

/// While it lives, the signals that ask a program to end (interrupt, terminate, hang-up) are noted instead of
/// ending it. A program that does not answer ends at a later one. One object at a time.
class StopSignals
{
public:
    /// What comes so soon after the first is the same request: timeout(1) sends its signal to the program and
    /// to the program's group.
    static constexpr int sameRequestMilliseconds = 500;

    StopSignals();
    ~StopSignals();
    StopSignals(const StopSignals&) = delete;
    StopSignals& operator=(const StopSignals&) = delete;

    /// Whether one has come.
    bool raised() const;

    /// A file descriptor that becomes readable when the first one comes, for an event loop to wait on.
    int descriptor() const { return pipe_[0]; }

private:
    static constexpr std::array<int, 3> signals = {{SIGINT, SIGTERM, SIGHUP}};

    std::array<int, 2> pipe_;
    std::array<struct sigaction, signals.size()> previous_;
};
