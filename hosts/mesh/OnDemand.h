#pragma once

#include <atomic>
#include <mutex>

namespace hostkit {

/// A value that is made when it is first asked for and kept from then on. Threads may ask at the same time:
/// one makes it, the others wait for it.
template <typename Value>
class OnDemand
{
public:
    OnDemand() = default;
    ~OnDemand() { delete made(); }
    OnDemand(const OnDemand&) = delete;
    OnDemand& operator=(const OnDemand&) = delete;

    /// What `make` returned when it was first called; a value that cannot be moved is made in its place. What
    /// `make` throws passes through, and who asks next tries again.
    template <typename Make>
    const Value& get(const Make& make) const
    {
        if (!made()) {
            const std::lock_guard<std::mutex> lock(making_);
            if (!made()) {
                value_.store(new Value(make()), std::memory_order_release);
            }
        }
        return *made();
    }

    /// The value, or null: nobody has asked yet. Waits for nobody.
    const Value* made() const { return value_.load(std::memory_order_acquire); }

private:
    mutable std::mutex making_;
    mutable std::atomic<const Value*> value_{nullptr};
};

} // namespace hostkit
