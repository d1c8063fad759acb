#pragma once

#include "contracts/math/Vector3.h"
#include "hosts/mesh/BoxTree.h"
#include "hosts/mesh/PickHit.h"
#include "hosts/mesh/kelvar_mesh_api.h"

#include <optional>
#include <utility>
#include <vector>

class OruVisPickVolume;

namespace hostkit {

/// Finds the point of a cloud that a pick window shows, without looking at the others: TriangleHierarchy's
/// sister. Borrows the positions, which stay unchanged and outlive it; takes 6 bytes a point.
class KELVAR_MESH_API PointHierarchy
{
public:
    /// A hierarchy without points: nothing is ever hit.
    PointHierarchy() = default;

    /// `tree` is over the points as they stand in `positions`.
    PointHierarchy(BoxTree tree, const std::vector<Kelvar::Math::Vector3>& positions)
        : tree_(std::move(tree))
        , positions_(positions.data())
    {}

    /// The nearest hit over all pixels of the window, for points that are drawn as squares of `size` pixels;
    /// a point whose center lies outside the viewport is not drawn. Equal depths: the pixel nearer to the
    /// window's center, then the point that comes first.
    std::optional<PickHit> pick(const OruVisPickVolume& volume, int size) const;

    const BoxTree& tree() const { return tree_; }

private:
    BoxTree tree_;
    const Kelvar::Math::Vector3* positions_ = nullptr;
};

} // namespace hostkit
