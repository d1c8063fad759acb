#pragma once

#include "contracts/math/BoundingBox.h"
#include "contracts/math/Vector3.h"
#include "hosts/mesh/Material.h"

#include <QString>

#include <cstdint>
#include <vector>

namespace hostkit {

/// What the shapes of parts have in common: surfaces (Mesh), lines (LineSet) and points (PointSet).
///
/// Made by its builder and never changed afterwards: a shape's hierarchy points into its arrays. Hold it by
/// shared pointer to const, and the drawing side and a loading thread can share it. Coordinates are those of
/// the shape's own frame; a part says where in the model that is.
struct Shape
{
    Shape() = default;
    Shape(const Shape&) = delete;
    Shape& operator=(const Shape&) = delete;

    /// Not empty, without '/'; not necessarily unique within its model.
    QString name;

    Material material;

    /// Not empty, all finite.
    std::vector<Kelvar::Math::Vector3> positions;

    /// Of length 1, as many as positions; lines and points may have none, they are not lit then.
    std::vector<Kelvar::Math::Vector3> normals;

    /// A color for each position, bytes red, green, blue, alpha in memory; empty: none of its own.
    std::vector<uint32_t> colors;

    Kelvar::Math::BoundingBox bounds;

protected:
    ~Shape() = default;
};

} // namespace hostkit
