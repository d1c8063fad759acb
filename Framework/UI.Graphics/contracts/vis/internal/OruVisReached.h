#pragma once

#include "contracts/math/BoundingBox.h"
#include "contracts/math/Matrix.h"
#include "contracts/vis/OruVisHierarchy.h"
#include "contracts/vis/OruVisViewVolume.h"
#include "contracts/vis/OruVisualization.h"

#include <QSet>

#include <cstddef>
#include <cstdint>
#include <vector>

class OruModified;
class OruProperties;

/// What the passes of a list reach: its entries, what was last asked of each, the union of their boxes, and a
/// hierarchy over the boxes of those that are reached only in view or under a pick.
///
/// It asks an entry again once that, or something below it, has changed, and only those that did, unless they
/// are many. Entries are borrowed; their addresses are read only by the questions.
class OruVisReached
{
public:
    using Objects = std::vector<OruVisualization*>;

    void append(OruVisualization* entry);

    /// Takes an entry out, in O(1); it may be dying. Nothing happens for an object that is none.
    void remove(const OruProperties* entry);

    /// An entry, or something below it, has changed: O(1). Nothing happens for an object that is none.
    void noteChange(const OruModified& entry);

    /// All entries may have changed without having noted it.
    void askAgain();

    /// The entries in list order, hidden ones too, without those that are reached only under a pick.
    Objects prepared();

    /// All entries are reached only under a pick.
    bool onlyPicked();

    /// The union of the boxes of the visible entries; undefined if none has any.
    const Kelvar::Math::BoundingBox& bounds();

    /// The widest rim of the visible entries: what a volume has to reach further so that none is missed.
    double rim();

    /// The visible entries in the order of a 3D pass that draws: list order, but those that are reached only
    /// in view form one group at the place of the first of them, nearest first, without those outside of
    /// `volume`.
    Objects drawn(const OruVisViewVolume& volume, const Kelvar::Math::Matrix& modelView);

    /// The same for a pass that picks. Those that are reached only under a pick belong to the group.
    Objects picked(const OruVisViewVolume& volume, const Kelvar::Math::Matrix& modelView);

    /// The visible entries in the order of a 2D pass: drawOrder(), then list order. Of the group only those
    /// in `volume`.
    Objects inFront(const OruVisViewVolume& volume);

private:
    using Index = std::uint32_t;
    /// Indices into entries_, in ascending order.
    using Indices = std::vector<Index>;
    using Reach = OruVisualization::Reach;

    /// What was last asked of an entry.
    struct Entry
    {
        explicit Entry(OruVisualization* entry)
            : object(entry)
        {}

        OruVisualization* object;
        /// Of the entry and what is below it when it was asked; 0: never.
        std::uint64_t revision = 0;
        /// Undefined for a hidden entry.
        Kelvar::Math::BoundingBox box;
        double rim = 0.0;
        int order = 0;
        Reach reach = Reach::Always;
        /// Visible, and reached by all passes.
        bool always = false;
        /// Visible, and one of the group: found by the hierarchy.
        bool grouped = false;
    };

    void staleAll();
    bool holds(const OruModified* entry) const;
    void takeOutRemoved();
    void askReaches();
    void askReach(Index index);
    void refresh();
    void refreshAll();
    void refreshOne(Index index);
    Entry asked(const Entry& before) const;
    static OruVisHierarchy::Object objectOf(const Entry& entry);
    void updateFirstGrouped(Index index);
    void rebuildBounds();
    void rebuildRim();
    void readyHierarchy();
    OruVisHierarchy::ObjectAt objects() const;
    Objects inOrder(const Indices& inView, const Kelvar::Math::Matrix& modelView) const;

    std::vector<Entry> entries_;
    /// Entries that are still in entries_ and no more in the list. They may be dead: nothing but their
    /// addresses counts.
    QSet<const OruProperties*> removed_;

    /// Entries that may have changed since they were asked, all of them alive; some more than once, and among
    /// them what is no entry.
    std::vector<const OruModified*> stale_;
    /// Any entry may have changed; stale_ is empty then.
    bool allStale_ = true;
    /// As long as allStale_: they were asked for their reach since.
    bool reachesKnown_ = false;
    /// bounds_ is the union of other boxes, rim_ the widest of other rims.
    bool boundsStale_ = true;
    bool rimStale_ = true;

    Kelvar::Math::BoundingBox bounds_;
    double rim_ = 0.0;
    /// Those that are not only reached under a pick.
    Indices prepared_;
    Indices always_;
    /// The group's place; the number of entries while there is none.
    Index firstGrouped_ = 0;

    /// Over the boxes of the group, with a mark on those that are drawn.
    OruVisHierarchy hierarchy_;
    /// Boxes that changed since the hierarchy was built.
    std::size_t refits_ = 0;
    /// It is that of other entries.
    bool hierarchyStale_ = true;
};
