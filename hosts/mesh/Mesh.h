#pragma once

#include "hosts/mesh/MeshEdges.h"
#include "hosts/mesh/Shape.h"
#include "hosts/mesh/TexturePoint.h"
#include "hosts/mesh/TriangleHierarchy.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace hostkit {

/// A surface of triangles, ready to be drawn and picked. Made by MeshBuilder.
struct Mesh : Shape
{
    uint32_t triangleCount() const { return static_cast<uint32_t>(indices.size() / 3); }

    /// One for each position, all finite, and the material has a texture; or none: it is not textured.
    std::vector<TexturePoint> texturePoints;

    /// Three a triangle, counter-clockwise seen from outside; all below the number of positions.
    std::vector<uint32_t> indices;

    /// The surface has an inside, and no triangle shows its back to the outside.
    bool closed = false;

    /// Where it ends or bends.
    MeshEdges edges;

    /// Boxes of the runs of `runLength` triangles that `indices` is made of, the last one shorter.
    std::vector<Kelvar::Math::BoundingBox> runs;
    static constexpr std::size_t runLength = 256;

    TriangleHierarchy hierarchy;
};

} // namespace hostkit
