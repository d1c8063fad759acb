#include "hosts/mesh/internal/SurfaceScan.h"

#include "hosts/mesh/Mesh.h"
#include "hosts/mesh/internal/Extremes.h"
#include "hosts/mesh/internal/FaceSide.h"

#include <algorithm>
#include <cstddef>

namespace hostkit {

using Kelvar::Math::Vector3;

SurfaceScan::SurfaceScan(const std::vector<Vector3>& positions, const std::vector<Vector3>& normals,
                         const std::vector<uint32_t>& indices, const Vector3& inside)
{
    constexpr std::size_t corners = 3 * Mesh::runLength;
    runs.reserve((indices.size() + corners - 1) / corners);
    for (std::size_t first = 0; first < indices.size(); first += corners) {
        const std::size_t end = std::min(first + corners, indices.size());
        Vector3 low = positions[indices[first]];
        Vector3 high = low;
        for (std::size_t at = first; at + 2 < end; at += 3) {
            const uint32_t* const triangle = &indices[at];
            const Vector3& a = positions[triangle[0]];
            const Vector3& b = positions[triangle[1]];
            const Vector3& c = positions[triangle[2]];
            low = least(least(low, a), least(b, c));
            high = most(most(high, a), most(b, c));
            volume += dot(a - inside, cross(b - inside, c - inside));
            collapsed |=
                triangle[0] == triangle[1] || triangle[1] == triangle[2] || triangle[2] == triangle[0];
            turned |= !normals.empty() && isTurned(positions, normals, triangle);
        }
        runs.emplace_back(low, high);
    }
}

} // namespace hostkit
