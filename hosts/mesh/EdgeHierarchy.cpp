#include "hosts/mesh/EdgeHierarchy.h"

#include <cstddef>
#include <numeric>

namespace hostkit {

EdgeHierarchy::EdgeHierarchy(const std::vector<Kelvar::Math::Vector3>& positions, const MeshEdges& edges)
    : order_(edges.angles.size())
{
    std::iota(order_.begin(), order_.end(), 0U);
    tree_ = BoxTree::build(order_, [&](uint32_t edge) {
        const uint32_t* const ends = &edges.indices[2 * std::size_t{edge}];
        return BoxTree::boxOf(positions[ends[0]], positions[ends[1]]);
    });
}

} // namespace hostkit
