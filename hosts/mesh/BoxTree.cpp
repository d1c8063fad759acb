#include "hosts/mesh/BoxTree.h"

#include <future>
#include <limits>

namespace hostkit {

namespace {

using Box = BoxTree::Box;

/// So many leaves at a time have items while a tree is built from numbers alone.
constexpr std::size_t leavesPerPiece = 8192;

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

std::size_t longestAxisOf(const Box& box)
{
    std::array<double, 3> extent{};
    for (std::size_t axis = 0; axis < 3; ++axis) {
        extent[axis] = static_cast<double>(box[axis + 3]) - box[axis];
    }
    return std::max_element(extent.begin(), extent.end()) - extent.begin();
}

} // namespace

/// Orders the items of a subtree by halving them again and again along the longest axis of their centers'
/// box, down to the leaves, and collects the boxes on the way back.
class BoxTree::Builder
{
public:
    /// The first item stands at `offset` in the tree.
    Builder(BoxTree& tree, std::vector<Item>& items, const std::function<Box(uint32_t)>& boxOfItem,
            std::size_t offset = 0)
        : tree_(tree)
        , items_(items)
        , boxOfItem_(boxOfItem)
        , offset_(offset)
    {}

    Box split(const Subtree& tree)
    {
        const std::size_t first = tree_.firstOf(tree.firstLeaf) - offset_;
        const std::size_t last = tree_.firstOf(tree.firstLeaf + tree.leafCount) - offset_;
        if (tree.leafCount == 1) {
            return tree_.boxes_[tree.node] = boxOfLeaf(first, last);
        }
        halve(first, tree_.firstOf(tree.second().firstLeaf) - offset_, last);
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

private:
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
        return longestAxisOf(box);
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
    std::size_t offset_;
};

/// Halves numbers by the centers of their items until a subtree is small enough for a Builder.
class BoxTree::LeanBuilder
{
public:
    /// `stop` may be null.
    LeanBuilder(BoxTree& tree, std::vector<uint32_t>& numbers, const std::function<Box(uint32_t)>& boxOfItem,
                const std::atomic<bool>* stop)
        : tree_(tree)
        , numbers_(numbers)
        , boxOfItem_(boxOfItem)
        , stop_(stop)
    {}

    void run()
    {
        const Subtree whole = tree_.whole();
        keys_.resize(whole.leafCount > leavesPerPiece ? numbers_.size() : 0);
        halve(whole);
        // There are never both the keys and the boxes.
        std::vector<Key>().swap(keys_);
        tree_.boxes_.resize(2 * whole.leafCount - 1);
        build(whole);
    }

private:
    struct Key
    {
        float center;
        uint32_t number;
    };

    std::size_t firstOf(const Subtree& tree) const { return tree_.firstOf(tree.firstLeaf); }
    std::size_t endOf(const Subtree& tree) const { return tree_.firstOf(tree.firstLeaf + tree.leafCount); }
    bool stopped() const { return stop_ && stop_->load(std::memory_order_relaxed); }

    /// Calls work(half) for both, which share nothing; for large ones in two threads.
    template <typename Work>
    static void forHalves(const Subtree& tree, const Work& work)
    {
        std::future<void> beside;
        if (tree.first().leafCount >= leavesPerThread) {
            beside = std::async([&] { work(tree.first()); });
        } else {
            work(tree.first());
        }
        work(tree.second());
        if (beside.valid()) {
            beside.get();
        }
    }

    /// Down to the pieces.
    void halve(const Subtree& tree)
    {
        if (tree.leafCount <= leavesPerPiece || stopped()) {
            return;
        }
        const std::size_t first = firstOf(tree);
        const std::size_t end = endOf(tree);
        const std::size_t axis = longestAxis(first, end);
        for (std::size_t i = first; i < end; ++i) {
            keys_[i] = {itemAt(i).center[axis], numbers_[i]};
        }
        std::nth_element(keys_.data() + first, keys_.data() + firstOf(tree.second()), keys_.data() + end,
                         [](const Key& a, const Key& b) { return a.center < b.center; });
        for (std::size_t i = first; i < end; ++i) {
            numbers_[i] = keys_[i].number;
        }
        forHalves(tree, [this](const Subtree& half) { halve(half); });
    }

    void build(const Subtree& tree)
    {
        if (stopped()) {
            return;
        }
        if (tree.leafCount <= leavesPerPiece) {
            buildPiece(tree);
            return;
        }
        forHalves(tree, [this](const Subtree& half) { build(half); });
        Box& box = tree_.boxes_[tree.node];
        box = tree_.boxes_[tree.first().node];
        grow(box, tree_.boxes_[tree.second().node]);
    }

    void buildPiece(const Subtree& tree)
    {
        const std::size_t first = firstOf(tree);
        std::vector<Item> items;
        items.reserve(endOf(tree) - first);
        for (std::size_t i = first; i < endOf(tree); ++i) {
            items.push_back(itemAt(i));
        }
        Builder(tree_, items, boxOfItem_, first).split(tree);
        for (std::size_t i = 0; i < items.size(); ++i) {
            numbers_[first + i] = items[i].number;
        }
    }

    Item itemAt(std::size_t place) const { return itemOf(boxOfItem_(numbers_[place]), numbers_[place]); }

    /// As Builder has it.
    std::size_t longestAxis(std::size_t first, std::size_t last) const
    {
        Box box = emptyBox();
        for (std::size_t i = first; i < last; i += 1 + (last - first) / 64) {
            const auto [x, y, z] = itemAt(i).center;
            grow(box, {x, y, z, x, y, z});
        }
        return longestAxisOf(box);
    }

    BoxTree& tree_;
    std::vector<uint32_t>& numbers_;
    const std::function<Box(uint32_t)>& boxOfItem_;
    const std::atomic<bool>* stop_;
    /// At the places of their numbers.
    std::vector<Key> keys_;
};

BoxTree BoxTree::build(std::vector<Item>& items, const std::function<Box(uint32_t)>& boxOfItem)
{
    BoxTree tree;
    tree.size_ = items.size();
    if (!items.empty()) {
        const Subtree whole = tree.whole();
        tree.boxes_.resize(2 * whole.leafCount - 1);
        Builder(tree, items, boxOfItem).split(whole);
    }
    return tree;
}

BoxTree BoxTree::build(std::vector<uint32_t>& numbers, const std::function<Box(uint32_t)>& boxOfItem,
                       const std::atomic<bool>* stop)
{
    BoxTree tree;
    tree.size_ = numbers.size();
    if (!numbers.empty()) {
        LeanBuilder(tree, numbers, boxOfItem, stop).run();
    }
    return tree;
}

} // namespace hostkit
