#pragma once

#include "hosts/mesh/SegmentHierarchy.h"
#include "hosts/mesh/Shape.h"

#include <cstdint>
#include <vector>

namespace hostkit {

/// Lines of straight segments, ready to be drawn and picked. Made by LineSetBuilder, which puts the segments
/// in the order of the hierarchy: neighbours in space stand near each other.
struct LineSet : Shape
{
    uint32_t segmentCount() const { return static_cast<uint32_t>(indices.size() / 2); }

    /// Two a segment; all below the number of positions.
    std::vector<uint32_t> indices;

    SegmentHierarchy hierarchy;
};

} // namespace hostkit
