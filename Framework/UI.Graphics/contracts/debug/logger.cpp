#include "contracts/debug/logger.h"

#include <cstdlib>
#include <cstring>
#include <utility>

namespace kelvardebug {

namespace {

bool tracingWanted()
{
    const char* setting = std::getenv("KELVAR_TRACE");
    return setting && std::strcmp(setting, "0") != 0;
}

} // namespace

logger::logger()
    : sink_(sink::standardError())
    , tracing_(tracingWanted())
{}

logger::~logger() = default;

dbgostream logger::derr(const std::string& head) const
{
    return errorActive_ ? dbgostream(target(), channel::error, head) : dbgostream();
}

dbgostream logger::dtrace(const std::string& head) const
{
    return tracing_ ? dbgostream(target(), channel::trace, indentation() + head) : dbgostream();
}

void logger::ensure(bool condition, const std::string& text) const
{
    if (!condition && errorActive_) {
        derr("ensure failed: ").buffer() << text;
    }
}

void logger::setSink(std::shared_ptr<sink> target)
{
    std::atomic_store(&sink_, target ? std::move(target) : sink::standardError());
}

void logger::writeTrace(const std::string& text) const
{
    const std::shared_ptr<sink> present = target(); // stays alive should the line replace it
    present->deliver(channel::trace, indentation() + text);
}

int& logger::depth()
{
    static thread_local int open = 0;
    return open;
}

std::string logger::indentation() const
{
    return std::string(2 * static_cast<std::size_t>(depth()), ' ');
}

} // namespace kelvardebug
