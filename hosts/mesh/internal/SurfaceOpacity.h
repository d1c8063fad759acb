#pragma once

#include "hosts/mesh/Mesh.h"

#include <array>
#include <cstdint>

namespace hostkit {

/// How much a mesh hides at a point of one of its triangles, 0 to 1, by its material: as it is drawn where
/// the texture is not shown smaller than it is. Borrows the mesh.
class SurfaceOpacity
{
public:
    /// `opacity` is that of the part.
    SurfaceOpacity(const Mesh& mesh, float opacity)
        : mesh_(mesh)
        , opacity_(opacity)
    {}

    /// Whether it can differ from one point to another.
    bool varies() const;

    /// `weights` are those of the corners and add up to 1.
    double at(uint32_t triangle, const std::array<double, 3>& weights) const;

private:
    using Corners = std::array<uint32_t, 3>;

    double vertexAlpha(const Corners& corners, const std::array<double, 3>& weights) const;
    double textureAlpha(const Corners& corners, const std::array<double, 3>& weights) const;

    const Mesh& mesh_;
    float opacity_;
};

} // namespace hostkit
