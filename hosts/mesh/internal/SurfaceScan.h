#pragma once

#include "contracts/math/BoundingBox.h"
#include "contracts/math/Vector3.h"

#include <cstdint>
#include <vector>

namespace hostkit {

/// What one walk over the triangles of a surface tells.
struct SurfaceScan
{
    /// All indices are below the number of positions; normals are as many as positions, or none. `inside` is
    /// any point in the midst of them.
    SurfaceScan(const std::vector<Kelvar::Math::Vector3>& positions,
                const std::vector<Kelvar::Math::Vector3>& normals, const std::vector<uint32_t>& indices,
                const Kelvar::Math::Vector3& inside);

    /// A triangle has its normals on the side from which it is seen clockwise.
    bool turned = false;

    /// A triangle uses a vertex twice.
    bool collapsed = false;

    /// Six times the volume that the surface encloses, if it is closed; negative when it is inside out.
    double volume = 0.0;

    /// As Mesh::runs.
    std::vector<Kelvar::Math::BoundingBox> runs;
};

} // namespace hostkit
