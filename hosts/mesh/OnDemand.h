#pragma once

#include <memory>
#include <mutex>
#include <utility>

namespace hostkit {

/// A value that is made when it is first asked for and kept from then on. Threads may ask at the same time:
/// one makes it, the others wait for it.
template <typename Value>
class OnDemand
{
public:
    /// What `make` returned when it was first called. What it throws passes through, and who asks next tries
    /// again.
    template <typename Make>
    const Value& get(const Make& make) const
    {
        std::call_once(made_, [&] { value_ = std::make_unique<const Value>(make()); });
        return *value_;
    }

private:
    mutable std::once_flag made_;
    mutable std::unique_ptr<const Value> value_;
};

} // namespace hostkit
