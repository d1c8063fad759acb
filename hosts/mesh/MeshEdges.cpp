#include "hosts/mesh/MeshEdges.h"

#include <algorithm>

namespace hostkit {

std::size_t MeshEdges::countFrom(float degrees) const
{
    const float angle = std::clamp(degrees, 0.0f, 180.0f) * anglesPerDegree;
    const auto end = std::upper_bound(angles.begin(), angles.end(), angle,
                                      [](float least, uint16_t each) { return least > each; });
    return static_cast<std::size_t>(end - angles.begin());
}

} // namespace hostkit
