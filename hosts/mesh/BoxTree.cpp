#include "hosts/mesh/BoxTree.h"

#include <future>
#include <limits>

namespace hostkit {

namespace {

using Box = BoxTree::Box;

/// A half of a tree with as many leaves is built in a thread of its own.
constexpr std::size_t leavesPerThread = 16384;

constexpr Box emptyBox()
{
    constexpr float inf = std::numeric_limits<float>::infinity();
    return {inf, inf, inf, -inf, -inf, -inf};
}

void grow(Box& box, const Box& other)
{
    for (std::size_t axis = 0; axis < 3; ++axis) {
        box[axis] = std::min(box[axis], other[axis]);
        box[axis + 3] = std::max(box[axis + 3], other[axis + 3]);
    }
}

} // namespace

/// Orders the items by halving them again and again along the longest axis of their centers' box, down to
/// the leaves, and collects the boxes on the way back.
class BoxTree::Builder
{
public:
    Builder(BoxTree& tree, std::vector<Item>& items, const std::function<Box(uint32_t)>& boxOfItem,
            const std::atomic<bool>* stop)
        : tree_(tree)
        , items_(items)
        , boxOfItem_(boxOfItem)
        , stop_(stop)
    {}

    void run()
    {
        tree_.size_ = items_.size();
        if (items_.empty()) {
            return;
        }
        const Subtree whole = tree_.whole();
        tree_.boxes_.resize(2 * whole.leafCount - 1);
        split(whole);
    }

private:
    Box split(const Subtree& tree)
    {
        if (stop_ && stop_->load(std::memory_order_relaxed)) {
            return emptyBox();
        }
        const std::size_t first = tree_.firstOf(tree.firstLeaf);
        const std::size_t last = tree_.firstOf(tree.firstLeaf + tree.leafCount);
        if (tree.leafCount == 1) {
            return tree_.boxes_[tree.node] = boxOfLeaf(first, last);
        }
        halve(first, tree_.firstOf(tree.second().firstLeaf), last);
        Box box = emptyBox();
        if (tree.first().leafCount >= leavesPerThread) {
            // The halves share nothing. Without a thread to be had the first one runs after the second.
            std::future<Box> beside = std::async([=] { return split(tree.first()); });
            box = split(tree.second());
            grow(box, beside.get());
        } else {
            box = split(tree.first());
            grow(box, split(tree.second()));
        }
        return tree_.boxes_[tree.node] = box;
    }

    Box boxOfLeaf(std::size_t first, std::size_t last) const
    {
        Box box = emptyBox();
        for (std::size_t i = first; i < last; ++i) {
            grow(box, boxOfItem_(items_[i].number));
        }
        return box;
    }

    /// Of the box of the items' centers; a sample of them is good enough for that.
    std::size_t longestAxis(std::size_t first, std::size_t last) const
    {
        const std::size_t stride = 1 + (last - first) / 64;
        Box box = emptyBox();
        for (std::size_t i = first; i < last; i += stride) {
            const auto& [x, y, z] = items_[i].center;
            grow(box, {x, y, z, x, y, z});
        }
        std::array<double, 3> extent{};
        for (std::size_t axis = 0; axis < 3; ++axis) {
            extent[axis] = static_cast<double>(box[axis + 3]) - box[axis];
        }
        return std::max_element(extent.begin(), extent.end()) - extent.begin();
    }

    /// Puts what belongs before `middle` along the longest axis there. A quickselect whose partition has no
    /// branch on the data; std::nth_element takes over for the last few and where equal centers stop
    /// progress.
    void halve(std::size_t first, std::size_t middle, std::size_t last)
    {
        const std::size_t axis = longestAxis(first, last);
        for (int round = 0; round < 16 && last - first > 32; ++round) {
            const float pivot = pivotFor(axis, first, middle, last);
            const std::size_t cut = partition(axis, pivot, first, last);
            if (cut == first) {
                break;
            }
            (cut <= middle ? first : last) = cut;
        }
        std::nth_element(items_.data() + first, items_.data() + middle, items_.data() + last,
                         [axis](const Item& a, const Item& b) { return a.center[axis] < b.center[axis]; });
    }

    /// An estimate, from a sample, of the coordinate at `middle` of the ordered range.
    float pivotFor(std::size_t axis, std::size_t first, std::size_t middle, std::size_t last) const
    {
        constexpr std::size_t sampleSize = 15;
        std::array<float, sampleSize> sample;
        const std::size_t stride = (last - first) / sampleSize;
        for (std::size_t i = 0; i < sampleSize; ++i) {
            sample[i] = items_[first + i * stride + stride / 2].center[axis];
        }
        std::sort(sample.begin(), sample.end());
        return sample[(middle - first) * sampleSize / (last - first)];
    }

    /// Moves what lies below the pivot to the front; returns where the rest begins.
    std::size_t partition(std::size_t axis, float pivot, std::size_t first, std::size_t last)
    {
        std::size_t cut = first;
        for (std::size_t i = first; i < last; ++i) {
            const Item item = items_[i];
            items_[i] = items_[cut];
            items_[cut] = item;
            cut += item.center[axis] < pivot ? 1 : 0;
        }
        return cut;
    }

    BoxTree& tree_;
    std::vector<Item>& items_;
    const std::function<Box(uint32_t)>& boxOfItem_;
    /// May be null.
    const std::atomic<bool>* stop_;
};

BoxTree BoxTree::build(std::vector<Item>& items, const std::function<Box(uint32_t)>& boxOfItem,
                       const std::atomic<bool>* stop)
{
    BoxTree tree;
    Builder(tree, items, boxOfItem, stop).run();
    return tree;
}

} // namespace hostkit
