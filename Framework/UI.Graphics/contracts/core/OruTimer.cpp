#include "contracts/core/OruTimer.h"

#include "contracts/core/OruDebugLogger.h"
#include "contracts/debug/dbgostream.h"
#include "contracts/debug/logger.h"

OruTimer::OruTimer(const char* what, int thresholdMs)
    : what_(what)
    , thresholdMs_(thresholdMs)
    , start_(std::chrono::steady_clock::now())
{}

OruTimer::~OruTimer()
{
    const std::chrono::duration<double, std::milli> elapsed = std::chrono::steady_clock::now() - start_;
    if (elapsed.count() <= thresholdMs_) {
        return;
    }
    const kelvardebug::dbgostream out = oru::debug_logger::debuglogger().dtrace("");
    if (out.active()) {
        out.buffer() << what_ << ' ' << elapsed.count() << " ms";
        out << std::endl;
    }
}
