#pragma once

#include "contracts/math/BoundingBox.h"
#include "contracts/vis/OruVisViewVolume.h"
#include "contracts/vis/kelvar_vis_api.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <utility>
#include <vector>

/// A tree of boxes that finds those in a volume without looking at the others.
///
/// Some boxes can be marked, so that these alone are looked for. An undefined box keeps its place and is
/// never found.
///
/// It is cut where it is asked, down to leaves of four: a first question about a small volume costs O(n), and
/// one about all O(n log n). Many boxes go into the cells of a grid in one step, few are halved at the median
/// of their centers along the longest axis; so no child holds more than half of what its parent does. A box
/// that changes is refitted, which keeps every answer right and lets the tree get looser until it is built
/// anew.
class KELVAR_VIS_API OruVisHierarchy
{
public:
    struct Object
    {
        /// Undefined or finite.
        Kelvar::Math::BoundingBox box;
        bool marked;
    };

    /// Answers with an object, by its number.
    using ObjectAt = std::function<Object(std::uint32_t index)>;

    /// Replaces the content by `count` objects, in O(n). Each is asked for once, in order.
    void build(std::size_t count, const ObjectAt& objectAt);

    /// Without content.
    void clear();

    /// Takes other objects, as many as there are, in O(n), without sorting.
    void refit(const ObjectAt& objectAt);

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
        void add(const Box& other)
        {
            // In a loop it takes twice as long.
            low[0] = std::min(low[0], other.low[0]);
            low[1] = std::min(low[1], other.low[1]);
            low[2] = std::min(low[2], other.low[2]);
            high[0] = std::max(high[0], other.high[0]);
            high[1] = std::max(high[1], other.high[1]);
            high[2] = std::max(high[2], other.high[2]);
        }
    };
    /// Over places of order_, from the first to behind the last.
    struct Node
    {
        Box box;
        std::uint32_t begin;
        std::uint32_t end;
        /// Index of the first child, which the others follow in the order of their places; 0 for a leaf, and
        /// for what is not cut yet.
        std::uint32_t children;
        std::uint16_t childCount;
        /// It holds a marked box.
        bool marked;
    };
    class Grid;

    static Box boxOf(const Kelvar::Math::BoundingBox& box);
    static float centerOf(const Box& box, int axis);

    void setObjects(std::size_t count, const ObjectAt& objectAt);
    void addNode(std::uint32_t begin, std::uint32_t end);
    bool cut(std::uint32_t self);
    bool spread(std::uint32_t self);
    void halve(std::uint32_t self);
    void addChildren(std::uint32_t self, const std::uint32_t* borders, std::size_t count);
    std::uint32_t childOver(const Node& node, std::uint32_t place) const;
    bool refit(Node& node) const;
    template <typename Wanted>
    void collectIf(const OruVisViewVolume& volume, std::vector<std::uint32_t>& found, Wanted wanted);

    std::vector<Node> nodes_;
    std::vector<std::uint32_t> order_;
    /// For each box its place in order_.
    std::vector<std::uint32_t> places_;
    std::vector<Box> boxes_;
    std::vector<bool> marks_;

    // What is used within one call; kept for its memory.
    /// Of the boxes that are being halved.
    std::vector<std::pair<float, std::uint32_t>> centers_;
    /// Of the boxes that are being spread.
    std::vector<std::pair<std::uint32_t, std::uint32_t>> cells_;
    /// Nodes to look at.
    std::vector<std::uint32_t> pending_;
};
