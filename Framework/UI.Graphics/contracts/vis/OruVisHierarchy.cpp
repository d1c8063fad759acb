#include "contracts/vis/OruVisHierarchy.h"

#include "contracts/math/Vector3.h"

#include <algorithm>
#include <numeric>

namespace {

constexpr std::uint32_t leafSize = 4;

} // namespace

OruVisHierarchy::Box OruVisHierarchy::boxOf(const Kelvar::Math::BoundingBox& box)
{
    const Kelvar::Math::Vector3 low = box.min();
    const Kelvar::Math::Vector3 high = box.max();
    return {{low.x, low.y, low.z}, {high.x, high.y, high.z}};
}

OruVisHierarchy::Box OruVisHierarchy::united(const Box& left, const Box& right)
{
    Box all = left;
    for (int axis = 0; axis < 3; ++axis) {
        all.low[axis] = std::min(all.low[axis], right.low[axis]);
        all.high[axis] = std::max(all.high[axis], right.high[axis]);
    }
    return all;
}

void OruVisHierarchy::setBoxes(const std::vector<Kelvar::Math::BoundingBox>& boxes)
{
    boxes_.resize(boxes.size());
    std::transform(boxes.begin(), boxes.end(), boxes_.begin(), boxOf);
}

void OruVisHierarchy::build(const std::vector<Kelvar::Math::BoundingBox>& boxes)
{
    setBoxes(boxes);
    order_.resize(boxes.size());
    std::iota(order_.begin(), order_.end(), 0U);
    nodes_.clear();
    if (!order_.empty()) {
        split(0, static_cast<std::uint32_t>(order_.size()));
    }
}

OruVisHierarchy::Box OruVisHierarchy::leafBox(std::uint32_t begin, std::uint32_t count) const
{
    Box all = boxes_[order_[begin]];
    for (std::uint32_t i = begin + 1; i < begin + count; ++i) {
        all = united(all, boxes_[order_[i]]);
    }
    return all;
}

std::uint32_t OruVisHierarchy::split(std::uint32_t begin, std::uint32_t end)
{
    const auto self = static_cast<std::uint32_t>(nodes_.size());
    const Box box = leafBox(begin, end - begin);
    if (end - begin <= leafSize) {
        nodes_.push_back(Node{box, begin, end - begin});
        return self;
    }
    nodes_.push_back(Node{box, 0, 0});
    int axis = 0;
    for (int other = 1; other < 3; ++other) {
        if (box.high[other] - box.low[other] > box.high[axis] - box.low[axis]) {
            axis = other;
        }
    }
    const std::uint32_t middle = begin + (end - begin) / 2;
    std::nth_element(order_.begin() + begin, order_.begin() + middle, order_.begin() + end,
                     [this, axis](std::uint32_t a, std::uint32_t b) {
                         return boxes_[a].low[axis] + boxes_[a].high[axis] <
                                boxes_[b].low[axis] + boxes_[b].high[axis];
                     });
    split(begin, middle);
    nodes_[self].first = split(middle, end);
    return self;
}

void OruVisHierarchy::refit(const std::vector<Kelvar::Math::BoundingBox>& boxes)
{
    setBoxes(boxes);
    // Children stand behind their parent.
    for (std::size_t i = nodes_.size(); i-- > 0;) {
        Node& node = nodes_[i];
        node.box = node.count > 0 ? leafBox(node.first, node.count)
                                  : united(nodes_[i + 1].box, nodes_[node.first].box);
    }
}

void OruVisHierarchy::collect(const OruVisViewVolume& volume, std::vector<std::uint32_t>& found) const
{
    if (nodes_.empty()) {
        return;
    }
    // Halving keeps the tree shallow: 32 levels hold all that can be counted.
    std::uint32_t pending[64];
    std::size_t count = 0;
    pending[count++] = 0;
    while (count > 0) {
        const std::uint32_t self = pending[--count];
        const Node& node = nodes_[self];
        if (!volume.meets(node.box.low, node.box.high)) {
            continue;
        }
        if (node.count == 0) {
            pending[count++] = node.first;
            pending[count++] = self + 1;
            continue;
        }
        for (std::uint32_t i = node.first; i < node.first + node.count; ++i) {
            const Box& box = boxes_[order_[i]];
            if (volume.meets(box.low, box.high)) {
                found.push_back(order_[i]);
            }
        }
    }
}
