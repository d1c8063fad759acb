#pragma once

#include "contracts/core/kelvar_core_api.h"

#include <chrono>

/// Measures the scope that it stands in, and reports one line to the trace of the process's logger when the
/// scope took longer than a threshold. Silent, like all tracing, unless tracing is on.
class KELVAR_CORE_API OruTimer
{
public:
    /// `what` names the work and must outlive the timer; `thresholdMs` is in milliseconds.
    OruTimer(const char* what, int thresholdMs);
    ~OruTimer();
    OruTimer(const OruTimer&) = delete;
    OruTimer& operator=(const OruTimer&) = delete;

private:
    const char* what_;
    int thresholdMs_;
    std::chrono::steady_clock::time_point start_;
};
