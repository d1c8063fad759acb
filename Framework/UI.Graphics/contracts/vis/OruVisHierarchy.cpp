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
    places_ = order_;
    addNode(0, static_cast<std::uint32_t>(order_.size()));
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

void OruVisHierarchy::addNode(std::uint32_t begin, std::uint32_t end)
{
    nodes_.push_back(Node{boxOf(BoundingBox()), begin, end, 0, false});
    refitWhole(nodes_.back());
}

/// Gives a node its children, unless it has them. False: it is a leaf.
bool OruVisHierarchy::cut(std::uint32_t self)
{
    if (nodes_[self].children != 0) {
        return true;
    }
    const Node node = nodes_[self];
    if (node.end - node.begin <= leafSize) {
        return false;
    }
    putInHalves(node);
    nodes_[self].children = static_cast<std::uint32_t>(nodes_.size());
    addNode(node.begin, node.middle());
    addNode(node.middle(), node.end);
    return true;
}

void OruVisHierarchy::putInHalves(const Node& node)
{
    const Box& box = node.box;
    int axis = 0;
    for (int other = 1; other < 3; ++other) {
        if (box.high[other] - box.low[other] > box.high[axis] - box.low[axis]) {
            axis = other;
        }
    }
    // Side by side, since the boxes lie all over the memory.
    centers_.clear();
    for (std::uint32_t place = node.begin; place < node.end; ++place) {
        centers_.emplace_back(centerOf(boxes_[order_[place]], axis), order_[place]);
    }
    const auto half = static_cast<std::ptrdiff_t>(node.middle() - node.begin);
    std::nth_element(centers_.begin(), centers_.begin() + half, centers_.end());
    for (std::uint32_t place = node.begin; place < node.end; ++place) {
        order_[place] = centers_[place - node.begin].second;
        places_[order_[place]] = place;
    }
}

void OruVisHierarchy::refit(const std::vector<Object>& objects)
{
    setObjects(objects);
    // Children stand behind their parent.
    for (std::size_t self = nodes_.size(); self-- > 0;) {
        Node& node = nodes_[self];
        node.children != 0 ? refitFromChildren(node) : refitWhole(node);
    }
}

void OruVisHierarchy::refitFromChildren(Node& node) const
{
    const Node& first = nodes_[node.children];
    const Node& second = nodes_[node.children + 1];
    node.box = united(first.box, second.box);
    node.marked = first.marked || second.marked;
}

void OruVisHierarchy::refitWhole(Node& node) const
{
    node.box = boxOf(BoundingBox());
    node.marked = false;
    for (std::uint32_t place = node.begin; place < node.end; ++place) {
        node.box = united(node.box, boxes_[order_[place]]);
        node.marked = node.marked || marks_[order_[place]];
    }
}

void OruVisHierarchy::set(std::uint32_t index, const Object& object)
{
    boxes_[index] = boxOf(object.box);
    marks_[index] = object.marked;
    // Down to the leaf of that place, and up again.
    std::uint32_t way[mostLevels];
    std::size_t levels = 0;
    std::uint32_t self = 0;
    while (cut(self)) {
        way[levels++] = self;
        self = nodes_[self].children + (places_[index] < nodes_[self].middle() ? 0 : 1);
    }
    refitWhole(nodes_[self]);
    while (levels > 0) {
        refitFromChildren(nodes_[way[--levels]]);
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
                                Wanted wanted)
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
        if (!wanted(nodes_[self].marked) || !meets(nodes_[self].box)) {
            continue;
        }
        if (cut(self)) {
            pending[count++] = nodes_[self].children + 1;
            pending[count++] = nodes_[self].children;
            continue;
        }
        for (std::uint32_t place = nodes_[self].begin; place < nodes_[self].end; ++place) {
            const std::uint32_t index = order_[place];
            if (wanted(marks_[index]) && meets(boxes_[index])) {
                found.push_back(index);
            }
        }
    }
}

void OruVisHierarchy::collect(const OruVisViewVolume& volume, std::vector<std::uint32_t>& found)
{
    collectIf(volume, found, [](bool /*marked*/) { return true; });
}

void OruVisHierarchy::collectMarked(const OruVisViewVolume& volume, std::vector<std::uint32_t>& found)
{
    collectIf(volume, found, [](bool marked) { return marked; });
}
