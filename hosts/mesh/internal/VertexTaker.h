#pragma once

#include "hosts/mesh/MeshSource.h"
#include "hosts/mesh/Shape.h"

#include <cstdint>

namespace hostkit {

/// Moves vertices of a source to a shape of lines or points, one by one, with all that they have.
class VertexTaker
{
public:
    /// Gives the shape its name and material. Both outlive the taker. Throws std::runtime_error with the
    /// reason: a position that is not finite, an index that is out of range.
    VertexTaker(const MeshSource& source, Shape& shape);

    /// The vertex's place in the shape.
    uint32_t take(uint32_t vertex);

private:
    const MeshSource& source_;
    Shape& shape_;
    /// All normals of the source are directions.
    bool withNormals_;
};

} // namespace hostkit
