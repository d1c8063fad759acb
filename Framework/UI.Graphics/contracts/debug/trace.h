#pragma once

#include "contracts/debug/kelvar_debug_api.h"
#include "contracts/debug/logger.h"

#include <chrono>

namespace kelvardebug {

/// The scope of a traced function: a line when it is entered, and one with the time that it took when it is
/// left, by an exception as well. Scopes within are indented by two blanks:
///
///     > void f() @line 12
///       > void g() @line 20
///       < void g() @line 20: 0.104 ms
///     < void f() @line 12: 0.250 ms
///
/// Costs one branch at either end while tracing is off. Never throws.
class KELVAR_DEBUG_API trace
{
public:
    /// `function` is the full signature and `where` the text " @line " with the source line. Both texts and
    /// the logger must outlive the scope.
    trace(logger& log, const char* function, const char* where) noexcept
        : log_(log.tracing() ? &log : nullptr)
        , function_(function)
        , where_(where)
    {
        if (log_) {
            enter();
        }
    }

    trace(const trace&) = delete;
    trace& operator=(const trace&) = delete;

    ~trace()
    {
        if (log_) {
            leave();
        }
    }

private:
    void enter() noexcept;
    void leave() noexcept;

    logger* log_;
    const char* function_;
    const char* where_;
    std::chrono::steady_clock::time_point start_;
};

} // namespace kelvardebug
