#include "hosts/mesh/internal/MeshTopology.h"

#include "hosts/mesh/Mesh.h"
#include "hosts/mesh/internal/PointWelder.h"

#include <algorithm>

namespace hostkit {

MeshTopology::MeshTopology(std::vector<uint32_t> corners, uint32_t pointCount)
    : corners_(std::move(corners))
    , starts_(pointCount + 1u, 0u)
    , around_(corners_.size())
{
    for (const uint32_t point : corners_) {
        ++starts_[point + 1];
    }
    for (uint32_t point = 0; point < pointCount; ++point) {
        starts_[point + 1] += starts_[point];
    }
    std::vector<uint32_t> free(starts_.begin(), starts_.end() - 1);
    for (uint32_t corner = 0; corner < corners_.size(); ++corner) {
        around_[free[corners_[corner]]++] = corner;
    }
    for (uint32_t point = 0; point < pointCount; ++point) {
        std::sort(around_.begin() + starts_[point], around_.begin() + starts_[point + 1],
                  [this](uint32_t a, uint32_t b) {
                      return std::make_pair(nextPoint(a), a) < std::make_pair(nextPoint(b), b);
                  });
    }
}

MeshTopology MeshTopology::of(const Mesh& mesh)
{
    const std::vector<uint32_t> points = PointWelder::weld(mesh.positions);
    std::vector<uint32_t> corners;
    corners.reserve(mesh.indices.size());
    for (const uint32_t vertex : mesh.indices) {
        corners.push_back(points[vertex]);
    }
    return {std::move(corners), PointWelder::countOf(points)};
}

MeshTopology::Corners MeshTopology::cornersAt(uint32_t point) const
{
    return {around_.data() + starts_[point], around_.data() + starts_[point + 1]};
}

uint32_t MeshTopology::nextPoint(uint32_t corner) const
{
    return corners_[corner % 3 == 2 ? corner - 2 : corner + 1];
}

MeshTopology::Corners MeshTopology::cornersAlong(uint32_t from, uint32_t to) const
{
    const auto around = cornersAt(from);
    const uint32_t* const first = std::lower_bound(
        around.first, around.second, to, [this](uint32_t c, uint32_t p) { return nextPoint(c) < p; });
    const uint32_t* last = first;
    while (last != around.second && nextPoint(*last) == to) {
        ++last;
    }
    return {first, last};
}

bool MeshTopology::watertight() const
{
    for (uint32_t corner = 0; corner < corners_.size(); ++corner) {
        const auto opposite = cornersAlong(nextPoint(corner), corners_[corner]);
        if (opposite.second - opposite.first != 1) {
            return false;
        }
    }
    return !corners_.empty();
}

} // namespace hostkit
