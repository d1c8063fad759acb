#pragma once

#include "contracts/math/BoundingBox.h"
#include "contracts/vis/OruVisViewVolume.h"
#include "contracts/vis/kelvar_vis_api.h"

#include <cstddef>
#include <cstdint>
#include <vector>

/// A binary tree of boxes that finds those in a volume without looking at the others.
///
/// Some boxes can be marked, so that these alone are looked for. An undefined box keeps its place and is
/// never found.
///
/// Built by halving the boxes at the median of their centers along the longest axis: O(n log n), two nodes a
/// leaf of four. A box that changes is refitted, which keeps every answer right and lets the tree get looser
/// until it is built anew.
class KELVAR_VIS_API OruVisHierarchy
{
public:
    struct Object
    {
        /// Undefined or finite.
        Kelvar::Math::BoundingBox box;
        bool marked;
    };

    /// Replaces the content.
    void build(const std::vector<Object>& objects);

    /// Without content.
    void clear();

    /// Takes other objects, as many as there are, in O(n), without sorting.
    void refit(const std::vector<Object>& objects);

    /// Replaces one object, in O(log n).
    void set(std::uint32_t index, const Object& object);

    /// Number of objects.
    std::size_t size() const { return order_.size(); }

    /// The union of all boxes.
    Kelvar::Math::BoundingBox bounds() const;

    /// Appends to `found` the index of every box that meets the volume, in no particular order.
    void collect(const OruVisViewVolume& volume, std::vector<std::uint32_t>& found) const;

    /// Of the marked ones only.
    void collectMarked(const OruVisViewVolume& volume, std::vector<std::uint32_t>& found) const;

private:
    /// Lower corner, upper corner; turned inside out for none.
    struct Box
    {
        float low[3];
        float high[3];

        bool empty() const { return low[0] > high[0]; }
    };
    struct Node
    {
        Box box;
        /// Leaf: first place in order_. Inner: index of the right child; the left one follows its parent.
        std::uint32_t first;
        /// Number of boxes of a leaf; 0 for an inner node.
        std::uint16_t count;
        /// It holds a marked box.
        bool marked;
    };

    static Box boxOf(const Kelvar::Math::BoundingBox& box);
    static Box united(const Box& left, const Box& right);
    static float centerOf(const Box& box, int axis);

    std::uint32_t split(std::uint32_t begin, std::uint32_t end);
    void setObjects(const std::vector<Object>& objects);
    void refitLeaf(Node& leaf) const;
    void refitInner(std::uint32_t self);
    template <typename Wanted>
    void collectIf(const OruVisViewVolume& volume, std::vector<std::uint32_t>& found, Wanted wanted) const;

    std::vector<Node> nodes_;
    std::vector<std::uint32_t> order_;
    /// For each box its place in order_.
    std::vector<std::uint32_t> places_;
    std::vector<Box> boxes_;
    std::vector<bool> marks_;
};
