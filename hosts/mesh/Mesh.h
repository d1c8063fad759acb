#pragma once

#include "hosts/mesh/EdgeHierarchy.h"
#include "hosts/mesh/MeshEdges.h"
#include "hosts/mesh/MeshPicker.h"
#include "hosts/mesh/OnDemand.h"
#include "hosts/mesh/Shape.h"
#include "hosts/mesh/TexturePoint.h"
#include "hosts/mesh/kelvar_mesh_api.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace hostkit {

/// A surface of triangles, ready to be drawn and picked. Made by MeshBuilder.
struct KELVAR_MESH_API Mesh : Shape
{
    uint32_t triangleCount() const { return static_cast<uint32_t>(indices.size() / 3); }

    /// Where it ends or bends: found when first asked for, kept from then on. A million triangles take about
    /// a tenth of a second, so who knows beforehand that edges will be shown asks in the thread that loads.
    /// Threads may ask at the same time.
    const MeshEdges& edges() const;

    /// The edges by where they are; found and kept as they are.
    const EdgeHierarchy& edgeHierarchy() const;

    /// Whether it encloses a volume, so that a cut through it has a face: it is closed, or its cracks are too
    /// small to matter. Found when first asked for and kept; threads may ask at the same time.
    bool isSolid() const;

    /// One for each position, all finite, and the material has a texture; or none: it is not textured.
    std::vector<TexturePoint> texturePoints;

    /// Three a triangle, counter-clockwise seen from outside; all below the number of positions.
    std::vector<uint32_t> indices;

    /// The surface has an inside, and no triangle shows its back to the outside.
    bool closed = false;

    /// The normals came with the source, so they tell where the surface is meant to be round.
    bool normalsGiven = false;

    /// Boxes of the runs of `runLength` triangles that `indices` is made of, the last one shorter.
    std::vector<Kelvar::Math::BoundingBox> runs;
    static constexpr std::size_t runLength = 256;

    /// What lies in a pick window. It borrows the mesh.
    MeshPicker picker{*this};

private:
    OnDemand<MeshEdges> edges_;
    OnDemand<EdgeHierarchy> edgeHierarchy_;
    enum class Solid : std::uint8_t
    {
        Unknown,
        No,
        Yes
    };
    mutable std::atomic<Solid> solid_{Solid::Unknown};
};

} // namespace hostkit
