#pragma once

#include "hosts/mesh/PointHierarchy.h"
#include "hosts/mesh/Shape.h"

#include <cstdint>

namespace hostkit {

/// A cloud of points, ready to be drawn and picked. Made by PointSetBuilder, which puts the points in the
/// order of the hierarchy: neighbours in space stand near each other.
struct PointSet : Shape
{
    uint32_t pointCount() const { return static_cast<uint32_t>(positions.size()); }

    PointHierarchy hierarchy;
};

} // namespace hostkit
