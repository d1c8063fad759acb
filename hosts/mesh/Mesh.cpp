#include "hosts/mesh/Mesh.h"

#include "hosts/mesh/internal/EdgeFinder.h"
#include "hosts/mesh/internal/MeshTopology.h"
#include "hosts/mesh/internal/SolidCheck.h"

namespace hostkit {

const MeshEdges& Mesh::edges() const
{
    return edges_.get([this] { return EdgeFinder(MeshTopology::of(*this), *this).find(); });
}

const EdgeHierarchy& Mesh::edgeHierarchy() const
{
    return edgeHierarchy_.get([this] { return EdgeHierarchy(positions, edges()); });
}

/// Threads that ask together find the same.
bool Mesh::isSolid() const
{
    if (solid_ == Solid::Unknown) {
        solid_ = closed || SolidCheck::passes(*this) ? Solid::Yes : Solid::No;
    }
    return solid_ == Solid::Yes;
}

} // namespace hostkit
