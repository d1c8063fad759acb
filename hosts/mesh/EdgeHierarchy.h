#pragma once

#include "contracts/math/Vector3.h"
#include "hosts/mesh/BoxTree.h"
#include "hosts/mesh/MeshEdges.h"
#include "hosts/mesh/kelvar_mesh_api.h"

#include <cstdint>
#include <vector>

namespace hostkit {

/// Finds the edges of a mesh near a place without looking at the others: a tree over all that MeshEdges has.
/// Takes 10 bytes an edge.
class KELVAR_MESH_API EdgeHierarchy
{
public:
    /// A hierarchy without edges.
    EdgeHierarchy() = default;

    /// The edges' indices are below the number of positions. Neither is needed any more afterwards.
    EdgeHierarchy(const std::vector<Kelvar::Math::Vector3>& positions, const MeshEdges& edges);

    const BoxTree& tree() const { return tree_; }

    /// The number in MeshEdges of the edge at each place of the tree.
    const std::vector<uint32_t>& order() const { return order_; }

private:
    std::vector<uint32_t> order_;
    BoxTree tree_;
};

} // namespace hostkit
