#include "contracts/debug/sink.h"

#include <cstdio>

namespace kelvardebug {

namespace {

class standard_error_sink : public sink
{
public:
    void line(channel /*about*/, const std::string& text) override
    {
        const std::string whole = text + '\n';
        std::fwrite(whole.data(), 1, whole.size(), stderr);
    }
};

} // namespace

sink::~sink() = default;

void sink::deliver(channel about, const std::string& text) noexcept
{
    try {
        line(about, text);
    } catch (...) {
        // There is no better place to report a failing report.
    }
}

std::shared_ptr<sink> sink::standardError()
{
    return std::make_shared<standard_error_sink>();
}

} // namespace kelvardebug
