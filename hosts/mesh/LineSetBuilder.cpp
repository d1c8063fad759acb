#include "hosts/mesh/LineSetBuilder.h"

#include "hosts/mesh/internal/VertexTaker.h"

#include <utility>
#include <vector>

namespace hostkit {

std::shared_ptr<const LineSet> LineSetBuilder::build(MeshSource source, const ReportShare& report)
{
    const auto set = std::make_shared<LineSet>();
    const std::vector<uint32_t>& indices = source.indices;
    VertexTaker taker(source, *set);
    const auto end = [&](uint32_t segment, std::size_t which) -> const Kelvar::Math::Vector3& {
        return source.positions[indices[2 * std::size_t{segment} + which]];
    };
    const auto boxOf = [&](uint32_t segment) { return BoxTree::boxOf(end(segment, 0), end(segment, 1)); };
    std::vector<BoxTree::Item> items;
    items.reserve(indices.size() / 2);
    for (std::size_t at = 0; at + 1 < indices.size(); at += 2) {
        const auto segment = static_cast<uint32_t>(at / 2);
        if (end(segment, 0) != end(segment, 1)) {
            items.push_back(BoxTree::itemOf(boxOf(segment), segment));
        }
    }
    report(0.1f);
    BoxTree tree = BoxTree::build(items, boxOf);
    report(0.8f);
    // A vertex is taken when the first segment uses it.
    constexpr uint32_t notTaken = 0xFFFFFFFF;
    std::vector<uint32_t> places(source.positions.size(), notTaken);
    set->indices.reserve(2 * items.size());
    for (const BoxTree::Item& item : items) {
        for (const std::size_t corner : {2 * std::size_t{item.number}, 2 * std::size_t{item.number} + 1}) {
            uint32_t& place = places[indices[corner]];
            if (place == notTaken) {
                place = taker.take(indices[corner]);
            }
            set->indices.push_back(place);
        }
    }
    set->hierarchy = SegmentHierarchy(std::move(tree), set->positions, set->indices);
    report(1.0f);
    return items.empty() ? nullptr : set;
}

} // namespace hostkit
