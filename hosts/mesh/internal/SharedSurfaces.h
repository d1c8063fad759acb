#pragma once

#include "contracts/vis/OruVisualization.h"
#include "hosts/mesh/PartView.h"

#include <cstddef>
#include <memory>
#include <unordered_set>
#include <vector>

class OruModified;
class OruProperties;

namespace hostkit {

class MeshVisualization;
class PartList;
class SurfaceBatch;

/// Draws the small surfaces of a model that are shown as they came, from few buffers by few calls: those in
/// its list, and in the part lists below.
///
/// The lists leave such parts to it (OruVisualization::Reach::UnderPick). A part that is chosen, moved, seen
/// through or shown with its edges is drawn by its list, as long as it is. What has changed is told by the
/// lists and looked at ahead of the next draw: that costs as much as was changed, however large the model is.
class SharedSurfaces
{
public:
    /// For the content of `model`, which outlives this object.
    explicit SharedSurfaces(PartList& model);
    ~SharedSurfaces();
    SharedSurfaces(const SharedSurfaces&) = delete;
    SharedSurfaces& operator=(const SharedSurfaces&) = delete;

    /// A direct child of one of the lists has changed; it may be dying.
    void noteChange(const OruModified& child) { changed_.insert(&child); }

    /// A direct child of one of the lists has come.
    void noteAdded(OruProperties& child);

    /// A direct child of one of the lists has left it; it may be dying.
    void noteRemoved(OruProperties& child);

    /// A list, and what is below it, belongs here no more.
    void leave(PartList& list);

    /// A part has left its batch.
    void noteHole() { ++holes_; }

    /// Puts parts into batches, where enough are new. Needs the context.
    void update(OruOglGeometry& geometry);

    /// Draws what is in view, nearest first, in the matrices that are loaded.
    void draw(const OruVisualization::DrawContext& context);

    /// That of the last draw; never null.
    const PartView::Shared& view() const { return view_; }

private:
    using Parts = std::vector<MeshVisualization*>;

    void followChanges();
    static void askAgainBelow(PartList& list);
    void checkBelow(const PartList& list, bool shownAbove);
    bool isShown(const OruProperties* list) const;
    void takeIn(PartList& list, Parts& parts);
    bool worthAnew() const;
    void makeAnew(OruOglGeometry& geometry);
    Parts sharingOf(const Parts& parts) const;
    void addBatches(const Parts& parts, bool closed, OruOglGeometry& geometry);

    PartList& model_;
    std::vector<std::unique_ptr<SurfaceBatch>> batches_;
    /// Direct children of the lists that have changed. All are alive.
    std::unordered_set<const OruModified*> changed_;
    /// Lists that were hidden when they were last looked at.
    std::unordered_set<const PartList*> hidden_;
    bool made_ = false;
    std::size_t sharing_ = 0;
    /// Parts that came, and batched ones that left, since the batches were made.
    std::size_t added_ = 0;
    std::size_t holes_ = 0;
    PartView::Shared view_ = PartView::none();
};

} // namespace hostkit
