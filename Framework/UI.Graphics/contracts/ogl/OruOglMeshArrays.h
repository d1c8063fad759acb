#pragma once

#include <cstddef>
#include <cstdint>

/// Borrowed arrays of one mesh, on their way into an OruOglMeshBuffer: tightly packed, in model coordinates.
struct OruOglMeshArrays
{
    enum class Primitive
    {
        Triangles,
        Lines,
        Points
    };

    const float* positions = nullptr;     ///< x, y, z of each vertex.
    const float* normals = nullptr;       ///< x, y, z of each vertex, or null: none.
    const std::uint8_t* colors = nullptr; ///< red, green, blue, alpha of each vertex, or null: none.
    const float* texturePoints = nullptr; ///< s, t of each vertex for texture unit 0, or null: none.
    std::size_t vertexCount = 0;          ///< Vertices in each of the arrays above.
    /// Below vertexCount; three a triangle, two a line, one a point. Null: all vertices in their order.
    const std::uint32_t* indices = nullptr;
    std::size_t indexCount = 0;
    Primitive primitive = Primitive::Triangles;
};
