#include "hosts/mesh/internal/SurfaceGroup.h"

#include "contracts/math/BoundingBox.h"
#include "hosts/mesh/MeshVisualization.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <iterator>

namespace hostkit {

using Kelvar::Math::BoundingBox;
using Kelvar::Math::Vector3;

namespace {

struct Item
{
    std::array<float, 3> center;
    std::uint32_t vertices;
    std::uint32_t triangles;
    MeshVisualization* part;
};

Item itemOf(MeshVisualization* part)
{
    const Mesh& mesh = part->mesh();
    const Vector3 center = part->boundsAsItCame().center();
    return {{center.x, center.y, center.z},
            static_cast<std::uint32_t>(mesh.positions.size()),
            mesh.triangleCount(),
            part};
}

std::size_t sum(const Item* first, const Item* last, std::uint32_t Item::*count)
{
    std::size_t all = 0;
    for (const Item* item = first; item != last; ++item) {
        all += item->*count;
    }
    return all;
}

std::size_t longestAxis(const Item* first, const Item* last)
{
    BoundingBox box;
    for (const Item* item = first; item != last; ++item) {
        box.add(Vector3(item->center[0], item->center[1], item->center[2]));
    }
    const std::array<float, 3> sides = {box.width(), box.height(), box.depth()};
    return static_cast<std::size_t>(std::max_element(sides.begin(), sides.end()) - sides.begin());
}

/// Halves the items again and again along the longest axis.
class Cutter
{
public:
    explicit Cutter(std::vector<SurfaceGroup>& groups)
        : groups_(groups)
    {}

    /// Into groups, these into clusters.
    void cut(Item* first, Item* last)
    {
        if (sum(first, last, &Item::vertices) <= SurfaceGroup::mostVertices) {
            groups_.emplace_back();
            cutGroup(first, last);
            return;
        }
        Item* const middle = halve(first, last);
        cut(first, middle);
        cut(middle, last);
    }

private:
    static Item* halve(Item* first, Item* last)
    {
        const std::size_t axis = longestAxis(first, last);
        Item* const middle = first + (last - first) / 2;
        std::nth_element(first, middle, last,
                         [axis](const Item& a, const Item& b) { return a.center[axis] < b.center[axis]; });
        return middle;
    }

    void cutGroup(Item* first, Item* last)
    {
        if (last - first > 1 && sum(first, last, &Item::triangles) > SurfaceGroup::mostClusterTriangles) {
            Item* const middle = halve(first, last);
            cutGroup(first, middle);
            cutGroup(middle, last);
            return;
        }
        SurfaceGroup& group = groups_.back();
        for (const Item* item = first; item != last; ++item) {
            group.parts.push_back(item->part);
        }
        group.clusterEnds.push_back(group.parts.size());
    }

    std::vector<SurfaceGroup>& groups_;
};

} // namespace

std::vector<SurfaceGroup> SurfaceGroup::groupsOf(const std::vector<MeshVisualization*>& parts)
{
    std::vector<Item> items;
    items.reserve(parts.size());
    std::transform(parts.begin(), parts.end(), std::back_inserter(items), itemOf);
    std::vector<SurfaceGroup> groups;
    if (!items.empty()) {
        Cutter(groups).cut(items.data(), items.data() + items.size());
    }
    return groups;
}

} // namespace hostkit
