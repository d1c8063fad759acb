#pragma once

#include "hosts/mesh/Mesh.h"
#include "hosts/mesh/MeshSource.h"
#include "hosts/mesh/Progress.h"
#include "hosts/mesh/kelvar_mesh_api.h"

#include <memory>

namespace hostkit {

/// Makes a Mesh from what a file gives: joins equal vertices, works out missing normals and turns given ones
/// to the outer side of their triangle and finds whether the surface is closed.
///
/// A source with nothing to mend keeps its arrays: indices in place of repeated corners, all vertices used
/// and apart, and normals that fit their triangles. A million triangles take about 30 ms then.
///
/// Texture points are kept where the material has a texture and there is one for each position; one that is
/// not finite becomes (0, 0).
///
/// Two million triangles that share nothing take about a second. Triangles with two equal corners are
/// dropped.
class KELVAR_MESH_API MeshBuilder
{
public:
    /// Surfaces that meet at less than this angle, in degrees, are shaded as one round surface where normals
    /// are worked out.
    static constexpr float creaseAngle = 40.0f;

    /// Null when no triangle is left. Throws std::runtime_error with the reason: a position that is not
    /// finite, an index that is out of range. What `report` throws passes through.
    static std::shared_ptr<const Mesh> build(MeshSource source, const ReportShare& report);
};

} // namespace hostkit
