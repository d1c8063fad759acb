#pragma once

#include "hosts/mesh/kelvar_mesh_api.h"

#include <atomic>
#include <functional>
#include <stdexcept>

namespace hostkit {

/// Told the share of a piece of work that is done, 0 to 1, now and then; may throw to stop the work.
using ReportShare = std::function<void(float)>;

/// What a long piece of work and whoever waits for it tell each other, across threads: how far it is, and
/// that it should stop.
class KELVAR_MESH_API Progress
{
public:
    /// Thrown out of the work by report() once somebody has called cancel().
    struct KELVAR_MESH_API Cancelled : std::runtime_error
    {
        Cancelled()
            : std::runtime_error("cancelled")
        {}
    };

    /// The share done, 0 to 1. Called by the one who waits.
    float share() const { return share_.load(std::memory_order_relaxed); }

    /// Asks the work to stop at its next report.
    void cancel() { cancelled_.store(true, std::memory_order_relaxed); }
    bool cancelled() const { return cancelled_.load(std::memory_order_relaxed); }

    /// Called by the work, now and then. Throws Cancelled when it is to stop.
    void report(float share)
    {
        share_.store(share, std::memory_order_relaxed);
        if (cancelled()) {
            throw Cancelled();
        }
    }

private:
    std::atomic<float> share_{0.0f};
    std::atomic<bool> cancelled_{false};
};

} // namespace hostkit
