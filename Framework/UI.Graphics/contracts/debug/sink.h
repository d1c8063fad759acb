#pragma once

#include "contracts/debug/kelvar_debug_api.h"

#include <memory>
#include <string>

namespace kelvardebug {

/// What a line is about.
enum class channel
{
    error,
    trace
};

/// Where the lines of a logger go. Tests and hosts derive from it and install it with logger::setSink.
class KELVAR_DEBUG_API sink
{
public:
    sink() = default;
    sink(const sink&) = delete;
    sink& operator=(const sink&) = delete;
    virtual ~sink();

    /// Takes one whole line, without its end of line. Must not write to the logger that it serves. Lines of
    /// several threads may come at the same time.
    virtual void line(channel about, const std::string& text) = 0;

    /// Calls line(); an exception ends here, since diagnostics must not disturb what they report on.
    void deliver(channel about, const std::string& text) noexcept;

    /// The sink that writes both channels to stderr, one write for each line.
    static std::shared_ptr<sink> standardError();
};

} // namespace kelvardebug
