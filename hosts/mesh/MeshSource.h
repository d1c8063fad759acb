#pragma once

#include "contracts/math/Vector3.h"
#include "hosts/mesh/Material.h"
#include "hosts/mesh/Primitive.h"
#include "hosts/mesh/TexturePoint.h"

#include <QString>

#include <cstdint>
#include <vector>

namespace hostkit {

/// One part of a model as a file gives it: what ShapeBuilder makes a surface, lines or points from.
///
/// Corners may or may not share their vertices, normals may be missing; the frame is that of the shape to be.
struct MeshSource
{
    QString name;
    Material material;
    std::vector<Kelvar::Math::Vector3> positions;

    /// As many as positions, or none: those of a surface are then worked out from its triangles.
    std::vector<Kelvar::Math::Vector3> normals;

    /// As many as positions, or none; bytes red, green, blue, alpha in memory.
    std::vector<uint32_t> colors;

    /// As many as positions, or none.
    std::vector<TexturePoint> texturePoints;

    /// Three a triangle, two a line, one a point, each below the number of positions.
    std::vector<uint32_t> indices;

    Primitive primitive = Primitive::Triangles;
};

} // namespace hostkit
