#pragma once

#include "contracts/math/Vector3.h"
#include "hosts/mesh/BoxTree.h"
#include "hosts/mesh/kelvar_mesh_api.h"

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

class OruVisPickVolume;

namespace hostkit {

/// Finds what an indexed triangle mesh shows in a pick window without walking the mesh: a bounding volume
/// hierarchy, in the mesh's model coordinates, that is built once and asked on each pick.
///
/// It borrows the mesh's arrays: both must outlive the hierarchy, stay where they are and stay unchanged
/// (moving a vector keeps its elements in place). Its own share is one box for eight triangles and their
/// order, about 10 bytes a triangle; a pick allocates nothing and writes nothing, so threads may pick at the
/// same time.
///
/// Own code rather than Embree: for a million triangles Embree's tree takes 4 to 9 times the memory and its
/// picks, though quicker, are as far below what a person notices; and coverage and depth are computed here in
/// double from the window's matrix, pixel by pixel, as the mesh is drawn.
class KELVAR_MESH_API TriangleHierarchy
{
public:
    /// What is nearest to the eye in a pick window.
    struct Hit
    {
        float depth;           ///< window depth, 0 near to 1 far, in steps of 2^-24 as a depth buffer has it
        double centerDistance; ///< pixels between the centers of the hit pixel and of the pick window
        uint32_t triangle;     ///< its corners are indices[3 * triangle] and the two that follow
    };

    /// A hierarchy without triangles: nothing is ever hit.
    TriangleHierarchy() = default;

    /// Three indices make a triangle; one or two left over at the end are ignored. A triangle with an index
    /// outside `positions` or with a corner that is not finite is left out: it is never hit. Once `stop`
    /// turns true the rest is left undone, and the hierarchy is good for nothing; null: nobody stops it.
    static TriangleHierarchy build(const std::vector<Kelvar::Math::Vector3>& positions,
                                   const std::vector<uint32_t>& indices,
                                   const std::atomic<bool>* stop = nullptr);

    /// The nearest hit over the centers of all pixels of the window; nothing when no triangle covers one
    /// between the near and the far plane. A pixel center on a triangle's edge counts as covered, both faces
    /// count, and the matrix may be a perspective one. Equal depths: the pixel nearer to the window's center,
    /// then the triangle that comes first in `indices`.
    std::optional<Hit> pick(const OruVisPickVolume& volume) const;

    /// Whether a triangle can be hit at a point, told by its three corners' weights, which add up to 1. What
    /// is not taken lets the pick through.
    using Filter = std::function<bool(uint32_t triangle, const std::array<double, 3>& weights)>;

    /// The same among what `takes` takes. It is asked only where the answer would change the result.
    std::optional<Hit> pick(const OruVisPickVolume& volume, const Filter& takes) const;

    /// The same for triangles that are drawn as their three sides: the nearest point at which a side runs
    /// through the pixels of the window.
    std::optional<Hit> pickSides(const OruVisPickVolume& volume) const;

    /// Triangles that can be hit.
    std::size_t triangleCount() const { return triangles_.size(); }

    /// Memory of the hierarchy itself in bytes, without the borrowed arrays.
    std::size_t byteSize() const;

private:
    template <typename Question>
    std::optional<Hit> run(Question query) const;

    const Kelvar::Math::Vector3* positions_ = nullptr;
    const uint32_t* indices_ = nullptr;
    /// In the order of the tree.
    std::vector<uint32_t> triangles_;
    BoxTree tree_;
};

} // namespace hostkit
