#include "hosts/mesh/Mesh.h"

#include "hosts/mesh/internal/EdgeFinder.h"
#include "hosts/mesh/internal/MeshTopology.h"

namespace hostkit {

const MeshEdges& Mesh::edges() const
{
    return edges_.get([this] { return EdgeFinder(MeshTopology::of(*this), *this).find(); });
}

const EdgeHierarchy& Mesh::edgeHierarchy() const
{
    return edgeHierarchy_.get([this] { return EdgeHierarchy(positions, edges()); });
}

} // namespace hostkit
