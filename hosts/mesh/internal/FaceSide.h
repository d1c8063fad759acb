#pragma once

#include "contracts/math/Vector3.h"

#include <cstdint>
#include <vector>

namespace hostkit {

/// Whether the normals of a triangle's vertices point to the side from which it is seen clockwise.
inline bool isTurned(const std::vector<Kelvar::Math::Vector3>& positions,
                     const std::vector<Kelvar::Math::Vector3>& normals, const uint32_t* triangle)
{
    const Kelvar::Math::Vector3& a = positions[triangle[0]];
    const auto normal = cross(positions[triangle[1]] - a, positions[triangle[2]] - a);
    return dot(normal, normals[triangle[0]] + normals[triangle[1]] + normals[triangle[2]]) < 0.0f;
}

} // namespace hostkit
