#pragma once

#include "hosts/mesh/kelvar_mesh_api.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace hostkit {

/// The edges of a mesh where its surface ends or bends, ordered so that those which bend by an angle or more
/// are always the first ones: no search through the mesh when the angle is changed.
struct KELVAR_MESH_API MeshEdges
{
    /// Degrees: edges that bend less are not kept.
    static constexpr float leastAngle = 5.0f;

    /// What `angles` counts: this many make a degree.
    static constexpr float anglesPerDegree = 100.0f;

    /// How many edges bend by as many degrees or more. 0 is flat, 180 folded back; an open edge has 180.
    std::size_t countFrom(float degrees) const;

    /// Two an edge, below the number of the mesh's positions.
    std::vector<uint32_t> indices;

    /// One an edge, the largest first.
    std::vector<uint16_t> angles;
};

} // namespace hostkit
