#include "hosts/mesh/TriangleHierarchy.h"

#include "contracts/vis/OruVisPickVolume.h"
#include "hosts/mesh/internal/SideQuery.h"
#include "hosts/mesh/internal/TriangleQuery.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace hostkit {

namespace {

using Hit = TriangleHierarchy::Hit;
using Kelvar::Math::Vector3;

bool isFinite(const Vector3& v)
{
    return std::isfinite(v.x) && std::isfinite(v.y) && std::isfinite(v.z);
}

} // namespace

TriangleHierarchy TriangleHierarchy::build(const std::vector<Vector3>& positions,
                                           const std::vector<uint32_t>& indices,
                                           const std::atomic<bool>* stop)
{
    TriangleHierarchy hierarchy;
    hierarchy.positions_ = positions.data();
    hierarchy.indices_ = indices.data();
    const auto boxOf = [&](uint32_t triangle) {
        const uint32_t* const corners = &indices[3 * std::size_t{triangle}];
        return BoxTree::boxOf(positions[corners[0]], positions[corners[1]], positions[corners[2]]);
    };
    hierarchy.triangles_.reserve(indices.size() / 3);
    for (std::size_t at = 0; at + 2 < indices.size(); at += 3) {
        const bool usable = std::all_of(&indices[at], &indices[at] + 3, [&](uint32_t corner) {
            return corner < positions.size() && isFinite(positions[corner]);
        });
        if (usable) {
            hierarchy.triangles_.push_back(static_cast<uint32_t>(at / 3));
        }
    }
    hierarchy.tree_ = BoxTree::build(hierarchy.triangles_, boxOf, stop);
    return hierarchy;
}

template <typename Question>
std::optional<Hit> TriangleHierarchy::run(Question query) const
{
    tree_.search(query, [&](std::size_t place) {
        const uint32_t* corners = indices_ + 3 * std::size_t{triangles_[place]};
        query.test(positions_[corners[0]], positions_[corners[1]], positions_[corners[2]], triangles_[place]);
    });
    const auto& best = query.best();
    return best ? std::make_optional(Hit{best->depth, best->centerDistance, best->item}) : std::nullopt;
}

std::optional<Hit> TriangleHierarchy::pick(const OruVisPickVolume& volume) const
{
    return triangles_.empty() || volume.empty() ? std::nullopt : run(TriangleQuery(volume));
}

std::optional<Hit> TriangleHierarchy::pick(const OruVisPickVolume& volume, const Filter& takes) const
{
    return triangles_.empty() || volume.empty() ? std::nullopt : run(TriangleQuery(volume, &takes));
}

std::optional<Hit> TriangleHierarchy::pickSides(const OruVisPickVolume& volume) const
{
    return triangles_.empty() || volume.empty() ? std::nullopt : run(SideQuery(volume));
}

std::size_t TriangleHierarchy::byteSize() const
{
    return triangles_.capacity() * sizeof(uint32_t) + tree_.byteSize();
}

} // namespace hostkit
