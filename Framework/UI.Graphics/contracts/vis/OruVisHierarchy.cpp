#include "contracts/vis/OruVisHierarchy.h"

#include "contracts/math/Vector3.h"

#include <algorithm>
#include <limits>
#include <numeric>

namespace {

using Kelvar::Math::BoundingBox;
using Kelvar::Math::Vector3;

constexpr std::uint32_t leafSize = 4;
constexpr float infinite = std::numeric_limits<float>::infinity();

/// Halving keeps the tree shallow: 32 levels hold all that can be counted.
constexpr std::size_t mostLevels = 32;

} // namespace

OruVisHierarchy::Box OruVisHierarchy::boxOf(const BoundingBox& box)
{
    if (!box.defined()) {
        return {{infinite, infinite, infinite}, {-infinite, -infinite, -infinite}};
    }
    const Vector3 low = box.min();
    const Vector3 high = box.max();
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

/// Twice the center: only the order counts. What has none may stand anywhere.
float OruVisHierarchy::centerOf(const Box& box, int axis)
{
    return box.empty() ? 0.0f : box.low[axis] + box.high[axis];
}

void OruVisHierarchy::clear()
{
    nodes_.clear();
    order_.clear();
    places_.clear();
    boxes_.clear();
    marks_.clear();
}

void OruVisHierarchy::build(const std::vector<Object>& objects)
{
    clear();
    if (objects.empty()) {
        return;
    }
    setObjects(objects);
    order_.resize(objects.size());
    std::iota(order_.begin(), order_.end(), 0U);
    split(0, static_cast<std::uint32_t>(order_.size()));
    places_.resize(order_.size());
    for (std::size_t place = 0; place < order_.size(); ++place) {
        places_[order_[place]] = static_cast<std::uint32_t>(place);
    }
}

void OruVisHierarchy::setObjects(const std::vector<Object>& objects)
{
    boxes_.resize(objects.size());
    marks_.resize(objects.size());
    for (std::size_t i = 0; i < objects.size(); ++i) {
        boxes_[i] = boxOf(objects[i].box);
        marks_[i] = objects[i].marked;
    }
}

void OruVisHierarchy::refit(const std::vector<Object>& objects)
{
    setObjects(objects);
    // Children stand behind their parent.
    for (auto self = static_cast<std::uint32_t>(nodes_.size()); self-- > 0;) {
        nodes_[self].count > 0 ? refitLeaf(nodes_[self]) : refitInner(self);
    }
}

void OruVisHierarchy::refitInner(std::uint32_t self)
{
    Node& node = nodes_[self];
    const Node& left = nodes_[self + 1];
    const Node& right = nodes_[node.first];
    node.box = united(left.box, right.box);
    node.marked = left.marked || right.marked;
}

void OruVisHierarchy::refitLeaf(Node& leaf) const
{
    leaf.box = boxOf(BoundingBox());
    leaf.marked = false;
    for (std::uint32_t place = leaf.first; place < leaf.first + leaf.count; ++place) {
        leaf.box = united(leaf.box, boxes_[order_[place]]);
        leaf.marked = leaf.marked || marks_[order_[place]];
    }
}

std::uint32_t OruVisHierarchy::split(std::uint32_t begin, std::uint32_t end)
{
    const auto self = static_cast<std::uint32_t>(nodes_.size());
    nodes_.push_back(Node{boxOf(BoundingBox()), begin, 0, false});
    if (end - begin <= leafSize) {
        nodes_[self].count = static_cast<std::uint16_t>(end - begin);
        refitLeaf(nodes_[self]);
        return self;
    }
    Box box = boxOf(BoundingBox());
    for (std::uint32_t place = begin; place < end; ++place) {
        box = united(box, boxes_[order_[place]]);
    }
    int axis = 0;
    for (int other = 1; other < 3; ++other) {
        if (box.high[other] - box.low[other] > box.high[axis] - box.low[axis]) {
            axis = other;
        }
    }
    const std::uint32_t middle = begin + (end - begin) / 2;
    std::nth_element(order_.begin() + begin, order_.begin() + middle, order_.begin() + end,
                     [this, axis](std::uint32_t a, std::uint32_t b) {
                         return centerOf(boxes_[a], axis) < centerOf(boxes_[b], axis);
                     });
    split(begin, middle);
    nodes_[self].first = split(middle, end);
    refitInner(self);
    return self;
}

void OruVisHierarchy::set(std::uint32_t index, const Object& object)
{
    boxes_[index] = boxOf(object.box);
    marks_[index] = object.marked;
    // From the root to the leaf of that place, as split() has cut the order.
    std::uint32_t way[mostLevels];
    std::size_t levels = 0;
    std::uint32_t self = 0;
    std::uint32_t begin = 0;
    auto end = static_cast<std::uint32_t>(order_.size());
    while (nodes_[self].count == 0) {
        way[levels++] = self;
        const std::uint32_t middle = begin + (end - begin) / 2;
        const bool left = places_[index] < middle;
        (left ? end : begin) = middle;
        self = left ? self + 1 : nodes_[self].first;
    }
    refitLeaf(nodes_[self]);
    while (levels > 0) {
        refitInner(way[--levels]);
    }
}

BoundingBox OruVisHierarchy::bounds() const
{
    if (nodes_.empty() || nodes_.front().box.empty()) {
        return BoundingBox();
    }
    const Box& box = nodes_.front().box;
    return BoundingBox(Vector3(box.low[0], box.low[1], box.low[2]),
                       Vector3(box.high[0], box.high[1], box.high[2]));
}

template <typename Wanted>
void OruVisHierarchy::collectIf(const OruVisViewVolume& volume, std::vector<std::uint32_t>& found,
                                Wanted wanted) const
{
    if (nodes_.empty()) {
        return;
    }
    const auto meets = [&volume](const Box& box) { return !box.empty() && volume.meets(box.low, box.high); };
    std::uint32_t pending[2 * mostLevels];
    std::size_t count = 0;
    pending[count++] = 0;
    while (count > 0) {
        const std::uint32_t self = pending[--count];
        const Node& node = nodes_[self];
        if (!wanted(node.marked) || !meets(node.box)) {
            continue;
        }
        if (node.count == 0) {
            pending[count++] = node.first;
            pending[count++] = self + 1;
            continue;
        }
        for (std::uint32_t place = node.first; place < node.first + node.count; ++place) {
            const std::uint32_t index = order_[place];
            if (wanted(marks_[index]) && meets(boxes_[index])) {
                found.push_back(index);
            }
        }
    }
}

void OruVisHierarchy::collect(const OruVisViewVolume& volume, std::vector<std::uint32_t>& found) const
{
    collectIf(volume, found, [](bool /*marked*/) { return true; });
}

void OruVisHierarchy::collectMarked(const OruVisViewVolume& volume, std::vector<std::uint32_t>& found) const
{
    collectIf(volume, found, [](bool marked) { return marked; });
}
