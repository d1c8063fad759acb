#pragma once

#include <cstddef>
#include <vector>

namespace hostkit {

class MeshVisualization;

/// Surfaces that one buffer can hold, in an order in which neighbours in space stand together.
struct SurfaceGroup
{
    /// So that indices take two bytes.
    static constexpr std::size_t mostVertices = 0x10000;

    /// What a cluster of several surfaces may have: fewer make more draws, more draw what does not show.
    static constexpr std::size_t mostClusterTriangles = 1000;

    /// Puts surfaces, none with more vertices than a group may have, into groups.
    static std::vector<SurfaceGroup> groupsOf(const std::vector<MeshVisualization*>& parts);

    std::vector<MeshVisualization*> parts;
    /// For each cluster, a run of surfaces that lie close together, the number of surfaces up to its end.
    std::vector<std::size_t> clusterEnds;
};

} // namespace hostkit
