#pragma once

#include "contracts/core/OruModifiedWatcher.h"
#include "contracts/math/BoundingBox.h"
#include "contracts/math/Matrix.h"
#include "contracts/vis/OruVisHierarchy.h"
#include "contracts/vis/OruVisViewVolume.h"

#include <QSet>

#include <cstddef>
#include <cstdint>
#include <vector>

class OruProperties;
class OruVisualization;

/// What the passes of a list reach: its entries, what was last asked of each, the union of their boxes, and a
/// hierarchy over the boxes of those that are reached only in view.
///
/// It asks an entry again once that, or something below it, has changed: each question first costs one
/// comparison for the whole list. Entries are borrowed; their addresses are read only by the questions.
class OruVisReached
{
public:
    using Objects = std::vector<OruVisualization*>;

    /// For the entries of `list`, which outlives this object.
    explicit OruVisReached(const OruModified& list);

    void append(OruVisualization* entry);

    /// Takes an entry out, in O(1); it may be dying. Nothing happens for an object that is none.
    void remove(const OruProperties* entry);

    /// All entries in list order, hidden ones too.
    Objects all();

    /// The union of the boxes of the visible entries; undefined if none has any.
    const Kelvar::Math::BoundingBox& bounds();

    /// The widest rim of the visible entries: what a volume has to reach further so that none is missed.
    double rim();

    /// The visible entries in the order of a 3D pass: list order, but those that are reached only in view
    /// form one group at the place of the first of them, nearest first, without those outside of `volume`.
    Objects inScene(const OruVisViewVolume& volume, const Kelvar::Math::Matrix& modelView);

    /// The visible entries in the order of a 2D pass: drawOrder(), then list order. Of the group only those
    /// in `volume`.
    Objects inFront(const OruVisViewVolume& volume);

private:
    /// What was last asked of an entry, and when.
    struct Entry
    {
        OruVisualization* object;
        std::uint64_t revision;
        /// Undefined for a hidden entry.
        Kelvar::Math::BoundingBox box;
        double rim;
        int order;
        bool visible;
        /// One of the group that is reached only in view.
        bool grouped;
    };
    /// Indices into entries_.
    using Indices = std::vector<std::uint32_t>;

    void takeOutRemoved();
    void refresh();
    void refreshEntry(Entry& entry);
    void rebuildBounds();
    void rebuildOrder();
    void updateHierarchy();
    Indices groupIn(const OruVisViewVolume& volume) const;

    std::vector<Entry> entries_;
    /// Entries that are still in entries_ and no more in the list. They may be dead: nothing but their
    /// addresses counts.
    QSet<const OruProperties*> removed_;
    OruModifiedWatcher content_;

    /// An entry may have changed since it was asked.
    bool entriesStale_ = true;
    /// bounds_ is the union of other boxes than those of the entries.
    bool boundsStale_ = true;
    /// ahead_, group_ and behind_ are those of other entries.
    bool orderStale_ = true;
    /// Boxes of the group that the hierarchy does not know yet.
    std::size_t movedBoxes_ = 0;

    Kelvar::Math::BoundingBox bounds_;
    double rim_ = 0.0;
    /// Visible entries that every pass reaches: those ahead of the group's place in the list, and the others.
    Indices ahead_;
    Indices behind_;
    Indices group_;
    /// Over the boxes of group_, in its order.
    OruVisHierarchy hierarchy_;
    /// Boxes that moved since the hierarchy was built.
    std::size_t refits_ = 0;
};
