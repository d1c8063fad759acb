#pragma once

#include "contracts/math/Matrix.h"
#include "contracts/math/Vector3.h"
#include "contracts/ogl/OruOglMeshArrays.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace hostkit {

struct Mesh;

/// The arrays of several meshes in one, each put to its place: what a SurfaceBatch uploads.
class SurfaceArrays
{
public:
    /// Whether nothing that shows is lost when the corners of the mesh are rounded at that place.
    static bool canHold(const Mesh& mesh, const Kelvar::Math::Matrix& placement);

    /// Appends a mesh that can be held there. `color` is for all its vertices where it has none of its own;
    /// bytes red, green, blue, alpha in memory.
    void add(const Mesh& mesh, const Kelvar::Math::Matrix& placement, std::uint32_t color);

    void reserve(std::size_t vertices, std::size_t indices);

    /// Valid until the next change. Not of empty arrays.
    OruOglMeshArrays arrays() const;

private:
    void addPlaced(const Mesh& mesh, const Kelvar::Math::Matrix& placement);
    void addIndices(const Mesh& mesh, bool mirrored);

    std::vector<Kelvar::Math::Vector3> positions_;
    std::vector<Kelvar::Math::Vector3> normals_;
    std::vector<std::uint32_t> colors_;
    std::vector<std::uint32_t> indices_;
};

} // namespace hostkit
