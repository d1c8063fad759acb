#pragma once

#include "hosts/mesh/kelvar_mesh_api.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <utility>
#include <vector>

namespace hostkit {

/// A balanced binary tree of boxes over items that it puts in order: neighbours in space become neighbours in
/// the order. It finds the items near a ray, or in a view, without looking at the others.
///
/// The tree knows an item by its place in the order; what stands there is the owner's affair. It takes one
/// box for four items, 6 bytes an item. Asking changes nothing, so threads may ask at the same time.
class KELVAR_MESH_API BoxTree
{
public:
    /// Axis-parallel: the lower corner's x, y, z, then the upper corner's.
    using Box = std::array<float, 6>;

    /// The least box round points; `Points` are of Kelvar::Math::Vector3.
    template <typename... Points>
    static Box boxOf(const Points&... points)
    {
        return {std::min({points.x...}), std::min({points.y...}), std::min({points.z...}),
                std::max({points.x...}), std::max({points.y...}), std::max({points.z...})};
    }

    struct Item
    {
        std::array<float, 3> center;
        /// The owner's name for it.
        uint32_t number;
    };

    static Item itemOf(const Box& box, uint32_t number)
    {
        return {{0.5f * box[0] + 0.5f * box[3], 0.5f * box[1] + 0.5f * box[4], 0.5f * box[2] + 0.5f * box[5]},
                number};
    }

    /// A tree without items.
    BoxTree() = default;

    /// Puts `items` in the order of the tree. `boxOfItem` gives the box of an item by its number, all finite;
    /// several threads call it.
    static BoxTree build(std::vector<Item>& items, const std::function<Box(uint32_t)>& boxOfItem);

    /// The same for items told by their numbers alone, somewhat slower: of many it takes 8 bytes an item on
    /// the way, boxes and all, in place of 22. Once `stop` turns true the rest is left undone, and the tree
    /// is good for nothing; null: nobody stops it.
    static BoxTree build(std::vector<uint32_t>& numbers, const std::function<Box(uint32_t)>& boxOfItem,
                         const std::atomic<bool>* stop = nullptr);

    /// How many items.
    std::size_t size() const { return size_; }

    /// Memory of the tree in bytes.
    std::size_t byteSize() const { return boxes_.capacity() * sizeof(Box); }

    /// Calls `testItem` with the place of each item in the boxes that `query` lets pass, what lies nearer
    /// first. `query.mayImprove(box)` tells whether a box is worth opening, and may say no more often as the
    /// search goes on; of two boxes the one with the larger `query.nearness(box)` is nearer.
    template <typename Query, typename TestItem>
    void search(const Query& query, const TestItem& testItem) const;

    /// Calls `visit` with the first place and the number of each run of items whose boxes `meets` lets pass,
    /// in order. A run may hold some that lie beside: boxes of a few hundred items are not opened.
    template <typename Meets, typename Visit>
    void visitRuns(const Meets& meets, const Visit& visit) const;

private:
    class Builder;
    class LeanBuilder;

    struct Subtree
    {
        std::size_t node, firstLeaf, leafCount;

        Subtree first() const { return {node + 1, firstLeaf, leafCount / 2}; }
        Subtree second() const
        {
            return {node + 2 * (leafCount / 2), firstLeaf + leafCount / 2, leafCount - leafCount / 2};
        }
    };
    /// One entry a level and one more.
    using Waiting = std::array<Subtree, 64>;

    static constexpr std::size_t itemsPerLeaf = 8;
    static constexpr std::size_t leavesPerRun = 32;

    static std::size_t leafCountFor(std::size_t items) { return (items + itemsPerLeaf - 1) / itemsPerLeaf; }
    Subtree whole() const { return {0, 0, leafCountFor(size_)}; }
    std::size_t firstOf(std::size_t leaf) const { return std::min(leaf * itemsPerLeaf, size_); }

    std::size_t size_ = 0;
    /// In preorder: with n leaves below a node, the first child follows it directly and holds n / 2 of them,
    /// so that no links are kept.
    std::vector<Box> boxes_;
};

template <typename Query, typename TestItem>
void BoxTree::search(const Query& query, const TestItem& testItem) const
{
    Waiting waiting;
    waiting[0] = whole();
    for (std::size_t count = size_ > 0 ? 1 : 0; count > 0;) {
        const Subtree tree = waiting[--count];
        if (!query.mayImprove(boxes_[tree.node])) {
            continue;
        }
        if (tree.leafCount == 1) {
            for (std::size_t place = firstOf(tree.firstLeaf); place < firstOf(tree.firstLeaf + 1); ++place) {
                testItem(place);
            }
            continue;
        }
        Subtree nearer = tree.first();
        Subtree farther = tree.second();
        if (query.nearness(boxes_[nearer.node]) < query.nearness(boxes_[farther.node])) {
            std::swap(nearer, farther);
        }
        waiting[count++] = farther;
        waiting[count++] = nearer;
    }
}

template <typename Meets, typename Visit>
void BoxTree::visitRuns(const Meets& meets, const Visit& visit) const
{
    // Neighbours go in one run.
    std::size_t first = 0;
    std::size_t end = 0;
    const auto take = [&](std::size_t from, std::size_t to) {
        if (from != end) {
            if (end > first) {
                visit(first, end - first);
            }
            first = from;
        }
        end = to;
    };
    Waiting waiting;
    waiting[0] = whole();
    for (std::size_t count = size_ > 0 ? 1 : 0; count > 0;) {
        const Subtree tree = waiting[--count];
        if (!meets(boxes_[tree.node])) {
            continue;
        }
        if (tree.leafCount <= leavesPerRun) {
            take(firstOf(tree.firstLeaf), firstOf(tree.firstLeaf + tree.leafCount));
            continue;
        }
        waiting[count++] = tree.second();
        waiting[count++] = tree.first();
    }
    take(size_ + 1, size_ + 1);
}

} // namespace hostkit
