#pragma once

#include "contracts/math/Vector3.h"

#include <algorithm>

namespace hostkit {

/// The corners of the box round two points, in line and without a branch, for walks over all of a mesh.

inline Kelvar::Math::Vector3 least(const Kelvar::Math::Vector3& a, const Kelvar::Math::Vector3& b)
{
    return {std::min(a.x, b.x), std::min(a.y, b.y), std::min(a.z, b.z)};
}

inline Kelvar::Math::Vector3 most(const Kelvar::Math::Vector3& a, const Kelvar::Math::Vector3& b)
{
    return {std::max(a.x, b.x), std::max(a.y, b.y), std::max(a.z, b.z)};
}

} // namespace hostkit
