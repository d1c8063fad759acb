#pragma once

#include "contracts/math/BoundingBox.h"
#include "contracts/vis/OruVisViewVolume.h"
#include "contracts/vis/kelvar_vis_api.h"

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

/// A binary tree of boxes that finds those in a volume without looking at the others.
///
/// Some boxes can be marked, so that these alone are looked for. An undefined box keeps its place and is
/// never found.
///
/// It halves the boxes at the median of their centers along the longest axis, down to leaves of four, where
/// it is asked: a first question about a small volume costs O(n), and one about all O(n log n). A box that
/// changes is refitted, which keeps every answer right and lets the tree get looser until it is built anew.
class KELVAR_VIS_API OruVisHierarchy
{
public:
    struct Object
    {
        /// Undefined or finite.
        Kelvar::Math::BoundingBox box;
        bool marked;
    };

    /// Replaces the content, in O(n).
    void build(const std::vector<Object>& objects);

    /// Without content.
    void clear();

    /// Takes other objects, as many as there are, in O(n), without sorting.
    void refit(const std::vector<Object>& objects);

    /// Replaces one object, in O(log n) where that part of the tree is there.
    void set(std::uint32_t index, const Object& object);

    /// Number of objects.
    std::size_t size() const { return order_.size(); }

    /// The union of all boxes.
    Kelvar::Math::BoundingBox bounds() const;

    /// Appends to `found` the index of every box that meets the volume, in no particular order.
    void collect(const OruVisViewVolume& volume, std::vector<std::uint32_t>& found);

    /// Of the marked ones only.
    void collectMarked(const OruVisViewVolume& volume, std::vector<std::uint32_t>& found);

private:
    /// Lower corner, upper corner; turned inside out for none.
    struct Box
    {
        float low[3];
        float high[3];

        bool empty() const { return low[0] > high[0]; }
    };
    /// Over places of order_, from the first to behind the last.
    struct Node
    {
        Box box;
        std::uint32_t begin;
        std::uint32_t end;
        /// Index of the first child, which the second one follows; 0 for a leaf, and for what is not cut yet.
        std::uint32_t children;
        /// It holds a marked box.
        bool marked;

        std::uint32_t middle() const { return begin + (end - begin) / 2; }
    };

    static Box boxOf(const Kelvar::Math::BoundingBox& box);
    static Box united(const Box& left, const Box& right);
    static float centerOf(const Box& box, int axis);

    void setObjects(const std::vector<Object>& objects);
    void addNode(std::uint32_t begin, std::uint32_t end);
    bool cut(std::uint32_t self);
    void putInHalves(const Node& node);
    void refitWhole(Node& node) const;
    void refitFromChildren(Node& node) const;
    template <typename Wanted>
    void collectIf(const OruVisViewVolume& volume, std::vector<std::uint32_t>& found, Wanted wanted);

    std::vector<Node> nodes_;
    std::vector<std::uint32_t> order_;
    /// For each box its place in order_.
    std::vector<std::uint32_t> places_;
    std::vector<Box> boxes_;
    std::vector<bool> marks_;
    /// Of the boxes that are being halved; kept for its memory.
    std::vector<std::pair<float, std::uint32_t>> centers_;
};
