#pragma once

#include "contracts/debug/kelvar_debug_api.h"
#include "contracts/debug/sink.h"

#include <memory>
#include <ostream>
#include <string>

namespace kelvardebug {

/// A text stream to one channel of a logger, given out by value.
///
/// Copies write to the same line. Text is collected and reaches the sink as whole lines: at an end of line,
/// at a flush that finds text, and when the last copy goes. The sink is the one that the logger had when it
/// gave the stream out; a stream may outlive its logger.
///
/// A stream can be inactive. Ask before text is put together:
///
///     kelvardebug::dbgostream out = log.derr("");
///     if (out.active()) {
///         out.buffer() << "no file " << name;
///         out << std::endl;
///     }
class KELVAR_DEBUG_API dbgostream
{
public:
    /// An inactive stream.
    dbgostream() = default;

    /// An active stream to `target`, not null; every line starts with `head`.
    dbgostream(std::shared_ptr<sink> target, channel about, const std::string& head);

    bool active() const { return line_ != nullptr; }
    explicit operator bool() const { return active(); }

    /// The stream to write to, valid as long as a copy of this object. An inactive one drops what is written.
    std::ostream& buffer() const;

private:
    class line_stream;

    std::shared_ptr<line_stream> line_;
};

/// Applies a manipulator such as std::endl and gives the stream back. Nothing happens on an inactive stream.
KELVAR_DEBUG_API dbgostream operator<<(dbgostream stream, std::ostream& (*manipulator)(std::ostream&));

} // namespace kelvardebug
