#pragma once

#include "hosts/mesh/OnDemand.h"
#include "hosts/mesh/TriangleHierarchy.h"
#include "hosts/mesh/kelvar_mesh_api.h"

#include <cstdint>
#include <optional>

class OruVisPickVolume;

namespace hostkit {

class BackgroundHierarchy;
struct Mesh;

/// Picks in a mesh: what its TriangleHierarchy answers, at any time, without a wait for the hierarchy.
///
/// Nothing is built before it is wanted. The first pick in a mesh of up to `mostAtOnce` triangles builds the
/// hierarchy, which takes a few milliseconds. That of a larger mesh is built in a thread beside, one mesh
/// after the other; until it is ready a pick looks through the boxes of the mesh's runs and tries the
/// triangles of those that meet the window. The answers are the same. A million triangles in the order of
/// their surface take well below a millisecond then, in random order tens of them.
///
/// Threads may ask at the same time. Where there is no memory or no thread for a large hierarchy, there
/// never is one.
class KELVAR_MESH_API MeshPicker
{
public:
    using Hit = TriangleHierarchy::Hit;
    using Filter = TriangleHierarchy::Filter;

    static constexpr uint32_t mostAtOnce = 16384;

    /// Borrows the mesh, which may be without its content yet; it is complete at the first call.
    explicit MeshPicker(const Mesh& mesh);

    /// Where the hierarchy is just being built, stops that and waits for it: some milliseconds.
    ~MeshPicker();
    MeshPicker(const MeshPicker&) = delete;
    MeshPicker& operator=(const MeshPicker&) = delete;

    /// Has the hierarchy of a large mesh built, soon and beside: called with the first draw, so that it
    /// takes no time from the loading. The first pick does it otherwise.
    void prepare() const;

    /// Whether picks have the hierarchy.
    bool ready() const;

    /// As TriangleHierarchy has them.
    std::optional<Hit> pick(const OruVisPickVolume& volume) const;
    std::optional<Hit> pick(const OruVisPickVolume& volume, const Filter& takes) const;
    std::optional<Hit> pickSides(const OruVisPickVolume& volume) const;

private:
    bool small() const;
    const TriangleHierarchy* hierarchy() const;

    const Mesh& mesh_;
    /// Of a small mesh.
    OnDemand<TriangleHierarchy> own_;
    /// Of a large one.
    OnDemand<BackgroundHierarchy> beside_;
};

} // namespace hostkit
