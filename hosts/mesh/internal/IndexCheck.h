#pragma once

#include <cstdint>
#include <vector>

namespace hostkit {

/// What the indices of a surface tell without its positions: three a triangle, all different and below
/// `vertexCount`, which is below 2^31.

/// Every vertex belongs to a triangle.
bool allUsed(const std::vector<uint32_t>& indices, uint32_t vertexCount);

/// Every side of a triangle is that of one other triangle, too, and runs the other way there.
bool allPaired(const std::vector<uint32_t>& indices, uint32_t vertexCount);

} // namespace hostkit
