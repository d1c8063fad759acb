#pragma once

#include "contracts/core/kelvar_core_api.h"

namespace kelvardebug {
class logger;
}

namespace oru {
namespace debug_logger {

/// The one logger of the process, for traces, errors and checks. It outlives all static objects.
KELVAR_CORE_API kelvardebug::logger& debuglogger();

} // namespace debug_logger
} // namespace oru
