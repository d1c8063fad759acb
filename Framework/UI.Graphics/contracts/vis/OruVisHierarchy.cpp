#include "contracts/vis/OruVisHierarchy.h"

#include "contracts/math/Vector3.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <limits>
#include <numeric>

namespace {

using Kelvar::Math::BoundingBox;
using Kelvar::Math::Vector3;

constexpr std::uint32_t leafSize = 4;
constexpr float infinite = std::numeric_limits<float>::infinity();

/// Each child holds at most half of its parent's boxes: 32 levels hold all that can be counted.
constexpr std::size_t mostLevels = 32;

/// Fewer boxes are halved.
constexpr std::uint32_t leastToSpread = 2048;

/// Cells of a grid along an axis, and in all.
constexpr std::uint32_t cellsAlong = 8;
constexpr std::uint32_t cellCount = cellsAlong * cellsAlong * cellsAlong;

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

/// Twice the center: only the order counts. What has none may stand anywhere.
float OruVisHierarchy::centerOf(const Box& box, int axis)
{
    return box.empty() ? 0.0f : box.low[axis] + box.high[axis];
}

/// Cells over a box. Wherever a center lies, it has one.
class OruVisHierarchy::Grid
{
public:
    explicit Grid(const Box& box)
    {
        for (int axis = 0; axis < 3; ++axis) {
            low_[axis] = 2.0f * box.low[axis];
            perStep_[axis] = static_cast<float>(cellsAlong) / (2.0f * box.high[axis] - low_[axis]);
        }
    }

    std::uint32_t cellOf(const Box& box) const
    {
        return (stepOf(box, 0) * cellsAlong + stepOf(box, 1)) * cellsAlong + stepOf(box, 2);
    }

private:
    std::uint32_t stepOf(const Box& box, int axis) const
    {
        const float step = (centerOf(box, axis) - low_[axis]) * perStep_[axis];
        // No number, as in a box without width, stands for the first.
        return static_cast<std::uint32_t>(step > 0.0f ? std::min(step, static_cast<float>(cellsAlong - 1))
                                                      : 0.0f);
    }

    /// In twice the coordinates, as the centers.
    float low_[3];
    float perStep_[3];
};

void OruVisHierarchy::clear()
{
    nodes_.clear();
    order_.clear();
    places_.clear();
    boxes_.clear();
    marks_.clear();
}

void OruVisHierarchy::build(std::size_t count, const ObjectAt& objectAt)
{
    clear();
    if (count == 0) {
        return;
    }
    setObjects(count, objectAt);
    order_.resize(count);
    std::iota(order_.begin(), order_.end(), 0U);
    places_ = order_;
    addNode(0, static_cast<std::uint32_t>(count));
}

void OruVisHierarchy::setObjects(std::size_t count, const ObjectAt& objectAt)
{
    boxes_.clear();
    boxes_.reserve(count);
    marks_.resize(count);
    for (std::uint32_t index = 0; index < count; ++index) {
        const Object object = objectAt(index);
        boxes_.push_back(boxOf(object.box));
        marks_[index] = object.marked;
    }
}

void OruVisHierarchy::addNode(std::uint32_t begin, std::uint32_t end)
{
    nodes_.push_back(Node{boxOf(BoundingBox()), begin, end, 0, 0, false});
    refit(nodes_.back());
}

/// Gives a node its children, unless it has them. False: it is a leaf.
bool OruVisHierarchy::cut(std::uint32_t self)
{
    if (nodes_[self].children != 0) {
        return true;
    }
    const std::uint32_t count = nodes_[self].end - nodes_[self].begin;
    if (count <= leafSize) {
        return false;
    }
    if (count < leastToSpread || !spread(self)) {
        halve(self);
    }
    return true;
}

/// A child for each cell of a grid in which centers lie. False, nothing has changed: a cell has more than
/// half of them.
bool OruVisHierarchy::spread(std::uint32_t self)
{
    const Node node = nodes_[self];
    const Grid grid(node.box);
    std::array<std::uint32_t, cellCount + 1> borders{};
    cells_.clear();
    cells_.reserve(node.end - node.begin);
    for (std::uint32_t place = node.begin; place < node.end; ++place) {
        const std::uint32_t cell = grid.cellOf(boxes_[order_[place]]);
        cells_.emplace_back(cell, order_[place]);
        ++borders[cell + 1];
    }
    if (*std::max_element(borders.begin(), borders.end()) > (node.end - node.begin) / 2) {
        return false;
    }
    borders[0] = node.begin;
    std::partial_sum(borders.begin(), borders.end(), borders.begin());
    std::array<std::uint32_t, cellCount + 1> next = borders;
    for (const auto& [cell, index] : cells_) {
        const std::uint32_t place = next[cell]++;
        order_[place] = index;
        places_[index] = place;
    }
    addChildren(self, borders.data(), cellCount);
    return true;
}

/// Two children.
void OruVisHierarchy::halve(std::uint32_t self)
{
    const Node node = nodes_[self];
    const Box& box = node.box;
    int axis = 0;
    for (int other = 1; other < 3; ++other) {
        if (box.high[other] - box.low[other] > box.high[axis] - box.low[axis]) {
            axis = other;
        }
    }
    // Side by side, since the boxes lie all over the memory.
    centers_.clear();
    centers_.reserve(node.end - node.begin);
    for (std::uint32_t place = node.begin; place < node.end; ++place) {
        centers_.emplace_back(centerOf(boxes_[order_[place]], axis), order_[place]);
    }
    const std::uint32_t half = (node.end - node.begin) / 2;
    std::nth_element(centers_.begin(), centers_.begin() + static_cast<std::ptrdiff_t>(half), centers_.end());
    for (std::uint32_t place = node.begin; place < node.end; ++place) {
        order_[place] = centers_[place - node.begin].second;
        places_[order_[place]] = place;
    }
    const std::array<std::uint32_t, 3> borders = {node.begin, node.begin + half, node.end};
    addChildren(self, borders.data(), 2);
}

/// One between each border and the next, where there is a place.
void OruVisHierarchy::addChildren(std::uint32_t self, const std::uint32_t* borders, std::size_t count)
{
    const std::size_t first = nodes_.size();
    for (std::size_t i = 0; i < count; ++i) {
        if (borders[i] < borders[i + 1]) {
            addNode(borders[i], borders[i + 1]);
        }
    }
    nodes_[self].children = static_cast<std::uint32_t>(first);
    nodes_[self].childCount = static_cast<std::uint16_t>(nodes_.size() - first);
}

void OruVisHierarchy::refit(const ObjectAt& objectAt)
{
    setObjects(size(), objectAt);
    // Children stand behind their parent.
    for (std::size_t self = nodes_.size(); self-- > 0;) {
        refit(nodes_[self]);
    }
}

/// From its children, or else from its boxes. False: it is as it was.
bool OruVisHierarchy::refit(Node& node) const
{
    Box box = boxOf(BoundingBox());
    bool marked = false;
    for (std::uint32_t child = node.children; child < node.children + node.childCount; ++child) {
        box.add(nodes_[child].box);
        marked = marked || nodes_[child].marked;
    }
    for (std::uint32_t place = node.begin; node.children == 0 && place < node.end; ++place) {
        box.add(boxes_[order_[place]]);
        marked = marked || marks_[order_[place]];
    }
    const bool same = marked == node.marked && std::equal(box.low, box.low + 3, node.box.low) &&
                      std::equal(box.high, box.high + 3, node.box.high);
    node.box = box;
    node.marked = marked;
    return !same;
}

std::uint32_t OruVisHierarchy::childOver(const Node& node, std::uint32_t place) const
{
    const auto first = nodes_.begin() + static_cast<std::ptrdiff_t>(node.children);
    const auto child = std::upper_bound(first, first + node.childCount, place,
                                        [](std::uint32_t one, const Node& other) { return one < other.end; });
    return static_cast<std::uint32_t>(child - nodes_.begin());
}

void OruVisHierarchy::set(std::uint32_t index, const Object& object)
{
    // Down to the leaf of that place, and up again as far as something changes.
    std::uint32_t way[mostLevels];
    std::size_t levels = 0;
    std::uint32_t self = 0;
    while (cut(self)) {
        way[levels++] = self;
        self = childOver(nodes_[self], places_[index]);
    }
    boxes_[index] = boxOf(object.box);
    marks_[index] = object.marked;
    bool changed = refit(nodes_[self]);
    while (changed && levels > 0) {
        changed = refit(nodes_[way[--levels]]);
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
    const auto lookAt = [&](std::uint32_t self) {
        if (wanted(nodes_[self].marked) && meets(nodes_[self].box)) {
            pending_.push_back(self);
        }
    };
    pending_.clear();
    lookAt(0);
    while (!pending_.empty()) {
        const std::uint32_t self = pending_.back();
        pending_.pop_back();
        if (cut(self)) {
            for (std::uint32_t child = 0; child < nodes_[self].childCount; ++child) {
                lookAt(nodes_[self].children + child);
            }
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
