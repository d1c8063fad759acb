#pragma once

#include "contracts/math/Vector3.h"
#include "hosts/mesh/BoxTree.h"
#include "hosts/mesh/PickHit.h"
#include "hosts/mesh/kelvar_mesh_api.h"

#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

class OruVisPickVolume;

namespace hostkit {

/// Finds the segment that a pick window shows, without looking at the others: TriangleHierarchy's sister.
/// Borrows the arrays, which stay unchanged and outlive it; takes 6 bytes a segment.
class KELVAR_MESH_API SegmentHierarchy
{
public:
    /// A hierarchy without segments: nothing is ever hit.
    SegmentHierarchy() = default;

    /// `tree` is over the segments as they stand in `indices`, two each, all below the number of positions.
    SegmentHierarchy(BoxTree tree, const std::vector<Kelvar::Math::Vector3>& positions,
                     const std::vector<uint32_t>& indices)
        : tree_(std::move(tree))
        , positions_(positions.data())
        , indices_(indices.data())
    {}

    /// The nearest hit over all pixels of the window, for lines that are drawn `width` pixels wide, as OpenGL
    /// counts: across the axis that they run along. Equal depths: the pixel nearer to the window's center,
    /// then the segment that comes first.
    std::optional<PickHit> pick(const OruVisPickVolume& volume, int width) const;

    const BoxTree& tree() const { return tree_; }

private:
    BoxTree tree_;
    const Kelvar::Math::Vector3* positions_ = nullptr;
    const uint32_t* indices_ = nullptr;
};

} // namespace hostkit
