#include "contracts/core/OruDebugLogger.h"

#include "contracts/debug/logger.h"

kelvardebug::logger& oru::debug_logger::debuglogger()
{
    // Never destroyed: destructors of static objects may still report.
    static kelvardebug::logger* const processLogger = new kelvardebug::logger;
    return *processLogger;
}
