#pragma once

#include <cstdint>
#include <utility>
#include <vector>

namespace hostkit {

struct Mesh;

/// How the triangles of a mesh hang together: by the places of their corners, whatever vertices a file uses
/// for them.
///
/// A corner is a place in the list of indices: corner 3 * t + k is corner k of triangle t.
class MeshTopology
{
public:
    /// Some of the corners, from the first to behind the last.
    using Corners = std::pair<const uint32_t*, const uint32_t*>;

    /// `corners` gives the place of each corner, counted from 0 and below `pointCount`.
    MeshTopology(std::vector<uint32_t> corners, uint32_t pointCount);

    /// That of the indices of a mesh, with its places in the order in which `positions` first has them.
    static MeshTopology of(const Mesh& mesh);

    uint32_t pointCount() const { return static_cast<uint32_t>(starts_.size() - 1); }
    uint32_t pointOf(uint32_t corner) const { return corners_[corner]; }

    /// The corners at a place, ordered by the place that follows them in their triangle.
    Corners cornersAt(uint32_t point) const;

    /// The place that follows a corner in its triangle.
    uint32_t nextPoint(uint32_t corner) const;

    /// The corners at `from` that `to` follows, in ascending order: one for each triangle that runs along the
    /// edge in this direction.
    Corners cornersAlong(uint32_t from, uint32_t to) const;

    /// Every edge belongs to exactly two triangles, which run along it in opposite directions. Not so for a
    /// mesh without triangles.
    bool watertight() const;

private:
    std::vector<uint32_t> corners_;
    /// cornersAt of place p are around_[starts_[p]] up to around_[starts_[p + 1]].
    std::vector<uint32_t> starts_;
    std::vector<uint32_t> around_;
};

} // namespace hostkit
