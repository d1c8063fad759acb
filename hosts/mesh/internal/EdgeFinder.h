#pragma once

#include "contracts/math/Vector3.h"
#include "hosts/mesh/Mesh.h"
#include "hosts/mesh/MeshEdges.h"
#include "hosts/mesh/internal/MeshTopology.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace hostkit {

/// Finds the edges of a mesh that a drawing of it could show: those where its surface ends or bends.
///
/// Where two triangles meet in an edge, the angle between them counts, whichever way round each of them is;
/// where more do, the largest angle between their planes. An edge of one triangle is open, unless the surface
/// goes on beyond it in triangles of other lengths, as it does along the seams of faces that were cut into
/// triangles one by one.
class EdgeFinder
{
public:
    /// An edge that given normals shade as round, in degrees: from here on it is taken for sharp all the
    /// same.
    static constexpr float sharpestRound = 60.0f;

    /// `topology` is that of `mesh`; both are borrowed. Where given normals tell that the surface is meant to
    /// be round, edges are left out.
    EdgeFinder(const MeshTopology& topology, const Mesh& mesh);

    /// Once only.
    MeshEdges find();

private:
    struct Edge
    {
        uint32_t from;
        uint32_t to;
        uint16_t angle;
    };

    void visit(const MeshTopology::Corners& along);
    void add(uint32_t corner, float angle);
    MeshEdges sorted();
    Kelvar::Math::Vector3 faceNormal(uint32_t corner) const;
    float angleOfPair(uint32_t corner, uint32_t other) const;
    float angleOfMany(uint32_t corner, const MeshTopology::Corners& along,
                      const MeshTopology::Corners& against) const;
    float angleOfSingle(uint32_t corner) const;
    std::optional<float> angleOfSeam(uint32_t corner, bool atStart) const;
    std::optional<uint32_t> beyond(uint32_t corner, bool atStart) const;
    std::optional<uint32_t> openNeighbor(uint32_t corner, bool atStart) const;
    float unlessRound(float angle, bool round) const;
    bool shadedAlike(uint32_t corner, uint32_t other) const;

    const MeshTopology& topology_;
    const Mesh& mesh_;
    /// For each corner whether one triangle alone runs along the edge that starts there.
    std::vector<bool> open_;
    std::vector<Edge> edges_;
};

} // namespace hostkit
