#pragma once

#include "hosts/kit/Mesh.h"
#include "hosts/kit/MeshSource.h"
#include "hosts/kit/MeshTopology.h"
#include "hosts/kit/Progress.h"

#include <memory>

namespace hostkit {

/// Makes a Mesh from what a file gives: joins equal vertices, works out missing normals, finds out whether
/// the surface is closed and builds the hierarchy for picking.
///
/// Two million triangles that share nothing take about a second. Triangles with two equal corners are
/// dropped.
class MeshBuilder
{
public:
    /// Surfaces that meet at less than this angle, in degrees, are shaded as one round surface where normals
    /// are worked out.
    static constexpr float creaseAngle = 40.0f;

    /// Null when no triangle is left. Throws std::runtime_error with the reason: a position that is not
    /// finite, an index that is out of range. What `report` throws passes through.
    static std::shared_ptr<const Mesh> build(MeshSource source, const ReportShare& report);

private:
    MeshBuilder(MeshSource source, const ReportShare& report);

    void check() const;
    void buildTopology();
    void buildFaceNormals();
    void buildVertices();
    void buildVerticesAt(uint32_t point);
    /// The one normal of a place where no two triangles make a crease; zero where they may.
    Kelvar::Math::Vector3 roundNormalAt(uint32_t point) const;
    Kelvar::Math::Vector3 normalAt(uint32_t corner) const;
    uint32_t vertexFor(uint32_t corner, const Kelvar::Math::Vector3& normal, std::size_t firstAtPoint);
    bool facesOutwards() const;
    void buildRuns();

    MeshSource source_;
    ReportShare report_;
    MeshTopology topology_;
    /// For each triangle its normal, as long as twice its area: worked out where the source has none.
    std::vector<Kelvar::Math::Vector3> faceNormals_;
    std::shared_ptr<Mesh> mesh_;
};

} // namespace hostkit
