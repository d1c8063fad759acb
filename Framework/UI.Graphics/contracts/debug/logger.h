#pragma once

#include "contracts/debug/dbgostream.h"
#include "contracts/debug/kelvar_debug_api.h"
#include "contracts/debug/sink.h"

#include <atomic>
#include <memory>
#include <string>

namespace kelvardebug {

/// The place where errors are reported and functions are traced.
///
/// Errors are on and tracing is off in a new logger; the environment variable KELVAR_TRACE, set to anything
/// but "0", starts with tracing on. Lines go to stderr until a sink is installed. Any thread may write and
/// change the settings; the sink gets the lines in the thread that wrote them.
class KELVAR_DEBUG_API logger
{
public:
    logger();
    logger(const logger&) = delete;
    logger& operator=(const logger&) = delete;
    ~logger();

    /// A stream for error lines, each of them starting with `head`. Inactive while errors are silenced.
    dbgostream derr(const std::string& head) const;

    /// A stream for lines among those of the trace, indented like them. Inactive while tracing is off.
    dbgostream dtrace(const std::string& head) const;

    /// Reports "ensure failed: " and the text as an error line when the condition is false; then goes on.
    void ensure(bool condition, const std::string& text) const;

    /// Redirects the lines from now on; null means stderr.
    void setSink(std::shared_ptr<sink> target);

    /// False silences derr and ensure.
    void setErrorActive(bool active) { errorActive_ = active; }
    bool errorActive() const { return errorActive_; }

    /// A scope that is open already ends the way it began.
    void setTracing(bool on) { tracing_ = on; }
    bool tracing() const { return tracing_; }

private:
    friend class trace;

    /// How many scopes the calling thread has open.
    static int& depth();

    void writeTrace(const std::string& text) const;
    std::string indentation() const;
    std::shared_ptr<sink> target() const { return std::atomic_load(&sink_); }

    /// Only by std::atomic_load and std::atomic_store.
    std::shared_ptr<sink> sink_;
    std::atomic<bool> errorActive_{true};
    std::atomic<bool> tracing_;
};

} // namespace kelvardebug
