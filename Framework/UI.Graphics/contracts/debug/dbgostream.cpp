#include "contracts/debug/dbgostream.h"

#include <locale>
#include <streambuf>
#include <utility>

namespace kelvardebug {

namespace {

/// Collects characters and delivers them line by line.
class line_buffer : public std::streambuf
{
public:
    line_buffer(std::shared_ptr<sink> target, channel about, std::string head)
        : target_(std::move(target))
        , about_(about)
        , head_(std::move(head))
    {}

    void finish() noexcept
    {
        try {
            sync();
        } catch (...) {
            // Out of memory while the line was put together: it is lost.
        }
    }

protected:
    int_type overflow(int_type c) override
    {
        if (!traits_type::eq_int_type(c, traits_type::eof())) {
            put(traits_type::to_char_type(c));
        }
        return traits_type::not_eof(c);
    }

    int sync() override
    {
        if (!text_.empty()) {
            deliver();
        }
        return 0;
    }

private:
    void put(char c)
    {
        if (c == '\n') {
            deliver();
        } else {
            text_ += c;
        }
    }

    void deliver() { target_->deliver(about_, head_ + std::exchange(text_, std::string())); }

    std::shared_ptr<sink> target_;
    channel about_;
    std::string head_;
    std::string text_;
};

} // namespace

/// What the copies of a stream share: the buffer and the standard stream on it.
class dbgostream::line_stream
{
public:
    line_stream(std::shared_ptr<sink> target, channel about, const std::string& head)
        : buffer_(std::move(target), about, head)
        , stream_(&buffer_)
    {
        stream_.imbue(std::locale::classic());
    }

    line_stream(const line_stream&) = delete;
    line_stream& operator=(const line_stream&) = delete;
    ~line_stream() { buffer_.finish(); }

    std::ostream& stream() { return stream_; }

private:
    line_buffer buffer_;
    std::ostream stream_;
};

dbgostream::dbgostream(std::shared_ptr<sink> target, channel about, const std::string& head)
    : line_(std::make_shared<line_stream>(std::move(target), about, head))
{}

std::ostream& dbgostream::buffer() const
{
    // A stream without a buffer is in a failed state for good and drops everything.
    static thread_local std::ostream nowhere(nullptr);
    return line_ ? line_->stream() : nowhere;
}

dbgostream operator<<(dbgostream stream, std::ostream& (*manipulator)(std::ostream&))
{
    if (stream.active()) {
        manipulator(stream.buffer());
    }
    return stream;
}

} // namespace kelvardebug
