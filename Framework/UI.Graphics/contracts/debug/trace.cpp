#include "contracts/debug/trace.h"

#include <charconv>
#include <string>

namespace kelvardebug {

namespace {

const char* textOf(const char* text)
{
    return text ? text : "";
}

/// Milliseconds with three decimals, the same in every locale.
std::string milliseconds(std::chrono::steady_clock::duration elapsed)
{
    const double ms = std::chrono::duration<double, std::milli>(elapsed).count();
    char text[64];
    const std::to_chars_result end = std::to_chars(text, text + sizeof text, ms, std::chars_format::fixed, 3);
    return std::string(text, end.ptr) + " ms";
}

} // namespace

void trace::enter() noexcept
{
    try {
        log_->writeTrace(std::string("> ") + textOf(function_) + textOf(where_));
    } catch (...) {
        // Out of memory for the line: the scope goes on without it.
    }
    ++logger::depth();
    start_ = std::chrono::steady_clock::now();
}

void trace::leave() noexcept
{
    const std::chrono::steady_clock::duration elapsed = std::chrono::steady_clock::now() - start_;
    --logger::depth();
    try {
        log_->writeTrace(std::string("< ") + textOf(function_) + textOf(where_) + ": " +
                         milliseconds(elapsed));
    } catch (...) {
        // Out of memory for the line: the scope ends without it.
    }
}

} // namespace kelvardebug
