#include "hosts/mesh/PointSetBuilder.h"

#include "hosts/mesh/internal/VertexTaker.h"

#include <utility>

namespace hostkit {

std::shared_ptr<const PointSet> PointSetBuilder::build(MeshSource source, const ReportShare& report)
{
    const auto set = std::make_shared<PointSet>();
    const std::vector<uint32_t>& indices = source.indices;
    VertexTaker taker(source, *set);
    std::vector<BoxTree::Item> items;
    items.reserve(indices.size());
    for (const uint32_t vertex : indices) {
        items.push_back(BoxTree::itemOf(BoxTree::boxOf(source.positions[vertex]), vertex));
    }
    report(0.1f);
    BoxTree tree =
        BoxTree::build(items, [&](uint32_t vertex) { return BoxTree::boxOf(source.positions[vertex]); });
    report(0.8f);
    for (const BoxTree::Item& item : items) {
        taker.take(item.number);
    }
    set->hierarchy = PointHierarchy(std::move(tree), set->positions);
    report(1.0f);
    return items.empty() ? nullptr : set;
}

} // namespace hostkit
