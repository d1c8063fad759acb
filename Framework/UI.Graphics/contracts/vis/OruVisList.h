#pragma once

#include "contracts/vis/OruVisViewVolume.h"
#include "contracts/vis/OruVisualization.h"
#include "contracts/vis/kelvar_vis_api.h"

#include <QString>

#include <memory>
#include <vector>

class OruVisReached;
class OruVisWalk;

/// A visualization made of others: its passes reach its entries.
///
/// Entries are visualizations with unique names, kept in the order of their insertion. A hidden entry
/// (`visible` false) is not drawn, not picked and does not count for the bounds; it is updated and resized.
///
/// Order of the passes. 3D: list order; the entries that are reached only in view (Reach::WhenInView) make
/// one group at the place of the first of them, nearest first. 2D: drawOrder(), then list order. The group in
/// 2D is found by the matrices of the 3D pass before it, and whole if there was none.
///
/// Transparent objects. Entries that ask for it in the 3D pass (DrawContext::defer) are called once more
/// behind all entries of the outermost list that draws with that context: farthest first by the centers of
/// their bounds, in the order of asking where these are equally far, and ahead of all where they are
/// undefined. Who was destroyed, hidden or taken out in the meantime, or whose list was, is passed over.
///
/// Cost. Looking up a name is O(1). Bounds and hierarchy are remembered, and a change below the list costs a
/// question to the entry that it lies in and O(log n) in the hierarchy; of a large share of the entries, to
/// all of them. A pass looks at the entries that the hierarchy gives and at those reached always.
///
/// An exception of an entry passes through. Matrix and attribute stacks are first taken back to the depth
/// that they had when the list's operation began, so what the entry left pushed goes too.
///
/// Changes from within a pass. An entry may insert, remove and destroy whatever it likes, itself and the list
/// included; only bounds() and drawOrder() must leave the list as it is. The pass goes on over the entries
/// that are still there. Who comes during a pass of this list, or of one that holds it, waits: it is a child
/// with a name, but no pass reaches it and it has no bounds. The next update() takes it in. So does the next
/// resize(), which gives it its update() first; a newcomer of an update() is therefore drawn in the same
/// frame. While one waits, each draw3d() notes a change, so that the next frame updates.
class KELVAR_VIS_API OruVisList : public OruVisualization
{
public:
    static const QString typeString;

    /// An empty list named `name`.
    OruVisList(OruModifiedGroup& modifiedGroup, const QString& name);
    ~OruVisList() override;

    /// Appends an entry. `member` true: it belongs to its owner; false: the list takes ownership. Refused,
    /// nothing changed: null, and what the tree refuses (another parent, a name that is taken).
    virtual bool insert(OruVisualization* entry, bool member);

    /// The same for a node that is a visualization; any other is refused.
    bool insert(OruProperties* child, bool member) override;
    bool remove(OruProperties* child) override;

    /// The entry `name`, made of type `type` at the end of the list when missing. An unknown type gives a
    /// plain visualization of that type text. Throws std::invalid_argument for a name that the tree refuses.
    OruVisualization& child(const QString& name, const QString& type);

    /// The entry of that name, or null.
    OruVisualization* operator[](const QString& name);
    const OruVisualization* operator[](const QString& name) const;

    void update(const DrawContext& context) override;
    void resize(const DrawContext& context) override;
    void draw3d(const DrawContext& context) override;
    void draw2d(const DrawContext& context) override;
    OruVisHitRecordList select3d(const SelectContext& context) override;
    OruVisHitRecordList select2d(const SelectContext& context) override;

    /// The union of the bounds of the visible entries; undefined if none has any.
    Kelvar::Math::BoundingBox bounds() const override;

    /// The widest of the visible entries.
    double rim() const override;

protected:
    /// Nothing in it is reached but by select3d() (Reach::UnderPick), so that there is nothing that other
    /// passes of this list could do.
    bool onlyPicked() const;

    /// Has every entry asked again for reach(), bounds() and the like, as if each had noted a change; notes
    /// one of the list. For a list that decides itself how its entries are reached.
    void askAgain();

    void noteChange(const OruModified& child, const OruModified& origin) override;

    OruProperties* makeChild(const QString& name, const QString& type) override;

private:
    using Objects = std::vector<OruVisualization*>;

    bool inPass() const;
    bool hasNewcomer(const OruProperties* child) const;
    bool reaches(const OruVisualization& object) const;
    Objects takeInNewcomers();
    Objects inFront(OruVisViewVolume& volume) const;
    template <typename Operation>
    bool forEach(Objects objects, Operation operation);

    /// The entries, and what the passes reach of them.
    std::unique_ptr<OruVisReached> reached_;
    /// Children that came during a pass, behind the entries in list order.
    Objects newcomers_;
    /// The innermost of the passes over this list that are under way.
    OruVisWalk* walk_ = nullptr;

    /// What the last 3D pass showed, for the 2D pass behind it.
    OruVisViewVolume drawn_;
    OruVisViewVolume picked_;
};
