#pragma once

#include "contracts/math/BoundingBox.h"
#include "contracts/math/Vector3.h"
#include "hosts/mesh/TriangleHierarchy.h"

#include <QColor>
#include <QString>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace hostkit {

/// One part of a model, ready to be drawn and picked; in the frame of the model, whose Z axis points up.
///
/// Made by MeshBuilder and never changed afterwards: the hierarchy points into the arrays. Hold it by
/// shared pointer to const, and the drawing side and a loading thread can share it.
struct Mesh
{
    Mesh() = default;
    Mesh(const Mesh&) = delete;
    Mesh& operator=(const Mesh&) = delete;

    uint32_t triangleCount() const { return static_cast<uint32_t>(indices.size() / 3); }

    /// Not empty, without '/'; not necessarily unique within its model.
    QString name;

    /// The color of the material; drawn where `colors` is empty.
    QColor color;

    /// All finite. Normals have length 1 and there are as many as positions.
    std::vector<Kelvar::Math::Vector3> positions;
    std::vector<Kelvar::Math::Vector3> normals;

    /// A color for each position, bytes red, green, blue, alpha in memory; empty: none of its own.
    std::vector<uint32_t> colors;

    /// Three a triangle, counter-clockwise seen from outside; all below the number of positions.
    std::vector<uint32_t> indices;

    /// The surface has an inside, and no triangle shows its back to the outside.
    bool closed = false;

    Kelvar::Math::BoundingBox bounds;

    /// Boxes of the runs of `runLength` triangles that `indices` is made of, the last one shorter.
    std::vector<Kelvar::Math::BoundingBox> runs;
    static constexpr std::size_t runLength = 256;

    TriangleHierarchy hierarchy;
};

} // namespace hostkit
