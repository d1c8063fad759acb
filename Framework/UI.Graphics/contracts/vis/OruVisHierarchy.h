#pragma once

#include "contracts/math/BoundingBox.h"
#include "contracts/vis/OruVisViewVolume.h"
#include "contracts/vis/kelvar_vis_api.h"

#include <cstddef>
#include <cstdint>
#include <vector>

/// A binary tree of boxes that finds those in a volume without looking at the others.
///
/// Built by halving the boxes at the median of their centers along the longest axis: O(n log n), two nodes a
/// leaf of four. A box that moves is refitted, which keeps every answer right and lets the tree get looser
/// until it is built anew.
class KELVAR_VIS_API OruVisHierarchy
{
public:
    /// Replaces the content. All boxes are defined.
    void build(const std::vector<Kelvar::Math::BoundingBox>& boxes);

    /// Takes new boxes for the same number of objects, in O(n), without sorting.
    void refit(const std::vector<Kelvar::Math::BoundingBox>& boxes);

    /// Number of boxes.
    std::size_t size() const { return order_.size(); }

    /// Appends to `found` the index of every box that meets the volume, in no particular order.
    void collect(const OruVisViewVolume& volume, std::vector<std::uint32_t>& found) const;

private:
    struct Box
    {
        float low[3];
        float high[3];
    };
    struct Node
    {
        Box box;
        /// Leaf: first place in order_. Inner: index of the right child; the left one follows its parent.
        std::uint32_t first;
        /// Number of boxes of a leaf; 0 for an inner node.
        std::uint32_t count;
    };

    static Box boxOf(const Kelvar::Math::BoundingBox& box);
    static Box united(const Box& left, const Box& right);

    void setBoxes(const std::vector<Kelvar::Math::BoundingBox>& boxes);
    std::uint32_t split(std::uint32_t begin, std::uint32_t end);
    Box leafBox(std::uint32_t begin, std::uint32_t count) const;

    std::vector<Node> nodes_;
    std::vector<std::uint32_t> order_;
    std::vector<Box> boxes_;
};
