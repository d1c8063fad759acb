#pragma once

#include <cstdint>

namespace hostkit {

/// What of a shape is nearest to the eye in a pick window.
struct PickHit
{
    float depth;           ///< window depth, 0 near to 1 far, in steps of 2^-24 as a depth buffer has it
    double centerDistance; ///< pixels between the centers of the hit pixel and of the pick window
    uint32_t item;         ///< its place in the shape: of a point, of a line
};

} // namespace hostkit
