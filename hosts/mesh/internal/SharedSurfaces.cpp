#include "hosts/mesh/internal/SharedSurfaces.h"

#include "contracts/core/OruDebugLogger.h"
#include "contracts/debug/logger.h"
#include "contracts/vis/OruVisViewVolume.h"
#include "hosts/mesh/MeshVisualization.h"
#include "hosts/mesh/PartList.h"
#include "hosts/mesh/internal/EvenStep.h"
#include "hosts/mesh/internal/SurfaceArrays.h"
#include "hosts/mesh/internal/SurfaceBatch.h"
#include "hosts/mesh/internal/SurfaceGroup.h"

#include <algorithm>
#include <iterator>
#include <typeinfo>
#include <unordered_map>
#include <utility>

namespace hostkit {

using Kelvar::Math::Matrix;
using Kelvar::Math::Vector3;

namespace {

/// A mesh of several parts that has more is drawn part by part: that it is there once counts for more then.
/// Measured with a software renderer, a copy for each part saves a quarter of the frame with meshes of 50
/// triangles, a seventh with 100, a twentieth with 250, and nothing from 1,000 on.
constexpr std::size_t mostRepeatedTriangles = 256;

/// As many new parts are worth new batches, if they are this share of those that there are.
constexpr std::size_t leastAdded = 64;
constexpr std::size_t addedShare = 8;

/// What a class that stands on this one draws or does is unknown here.
template <typename Exact>
Exact* exactly(OruProperties* node)
{
    return node && typeid(*node) == typeid(Exact) ? static_cast<Exact*>(node) : nullptr;
}

} // namespace

SharedSurfaces::SharedSurfaces(PartList& model)
    : model_(model)
{
    model_.shared_ = this;
}

SharedSurfaces::~SharedSurfaces()
{
    leave(model_);
}

void SharedSurfaces::takeIn(PartList& list, Parts& parts)
{
    list.shared_ = this;
    if (!list.visible.value()) {
        hidden_.insert(&list);
    }
    for (unsigned int i = 0; i < list.size(); ++i) {
        if (auto* const part = exactly<MeshVisualization>(list.at(i))) {
            parts.push_back(part);
        } else if (auto* const below = exactly<PartList>(list.at(i))) {
            takeIn(*below, parts);
        }
    }
}

void SharedSurfaces::leave(PartList& list)
{
    list.shared_ = nullptr;
    hidden_.erase(&list);
    for (unsigned int i = 0; i < list.size(); ++i) {
        changed_.erase(list.at(i));
        auto* const part = exactly<MeshVisualization>(list.at(i));
        if (part && part->batch_) {
            part->leaveBatch();
            part->touch(); // its list is to ask it again
        } else if (auto* const below = exactly<PartList>(list.at(i)); below && below->shared_) {
            leave(*below);
        }
    }
}

void SharedSurfaces::noteAdded(OruProperties& child)
{
    if (exactly<MeshVisualization>(&child)) {
        ++added_;
    } else if (auto* const list = exactly<PartList>(&child)) {
        Parts parts;
        takeIn(*list, parts);
        added_ += parts.size();
    }
}

void SharedSurfaces::noteRemoved(OruProperties& child)
{
    changed_.erase(&child);
    if (auto* const part = exactly<MeshVisualization>(&child)) {
        part->leaveBatch();
    } else if (auto* const list = exactly<PartList>(&child)) {
        leave(*list);
    }
}

void SharedSurfaces::followChanges()
{
    for (const OruModified* const node : std::exchange(changed_, {})) {
        if (const auto* const part = dynamic_cast<const MeshVisualization*>(node)) {
            if (part->batch_) {
                part->batch_->check(part->placeInBatch_, isShown(part->parent()));
            }
            continue;
        }
        const auto* const list = dynamic_cast<const PartList*>(node);
        const bool wasShown = list && hidden_.count(list) == 0;
        if (list && list->shared_ == this && list->visible.value() != wasShown) {
            checkBelow(*list, isShown(list->parent()));
        }
    }
}

void SharedSurfaces::checkBelow(const PartList& list, bool shownAbove)
{
    const bool shown = list.visible.value();
    if (shown) {
        hidden_.erase(&list);
    } else {
        hidden_.insert(&list);
    }
    for (unsigned int i = 0; i < list.size(); ++i) {
        const auto* const part = exactly<MeshVisualization>(list.at(i));
        const auto* const below = exactly<PartList>(list.at(i));
        if (part && part->batch_) {
            part->batch_->check(part->placeInBatch_, shownAbove && shown);
        } else if (below) {
            checkBelow(*below, shownAbove && shown);
        }
    }
}

/// A list, and those above it up to the model's own.
bool SharedSurfaces::isShown(const OruProperties* list) const
{
    while (list != &model_ && static_cast<const PartList*>(list)->visible.value()) {
        list = list->parent();
    }
    return list == &model_;
}

void SharedSurfaces::update(OruOglGeometry& geometry)
{
    followChanges();
    if (worthAnew()) {
        makeAnew(geometry);
    }
}

bool SharedSurfaces::worthAnew() const
{
    return !made_ || added_ >= std::max(leastAdded, sharing_ / addedShare) || 2 * holes_ > sharing_;
}

void SharedSurfaces::makeAnew(OruOglGeometry& geometry)
{
    Parts parts;
    takeIn(model_, parts);
    batches_.clear();
    Parts sharing = sharingOf(parts);
    const auto open = std::partition(sharing.begin(), sharing.end(),
                                     [](const MeshVisualization* part) { return part->mesh().closed; });
    addBatches(Parts(sharing.begin(), open), true, geometry);
    addBatches(Parts(open, sharing.end()), false, geometry);
    for (MeshVisualization* const part : sharing) {
        if (part->batch_) {
            part->clearBuffer(); // of the time when it drew itself
        }
    }
    made_ = true;
    sharing_ = sharing.size();
    added_ = 0;
    holes_ = 0;
    changed_.clear();
    checkBelow(model_, true);
    askAgainBelow(model_);
}

/// Other parts than before are drawn here from now on.
void SharedSurfaces::askAgainBelow(PartList& list)
{
    list.askAgain();
    for (unsigned int i = 0; i < list.size(); ++i) {
        if (auto* const below = exactly<PartList>(list.at(i))) {
            askAgainBelow(*below);
        }
    }
}

SharedSurfaces::Parts SharedSurfaces::sharingOf(const Parts& parts) const
{
    std::unordered_map<const Mesh*, std::size_t> uses;
    for (const MeshVisualization* const part : parts) {
        if (part->mesh().triangleCount() > mostRepeatedTriangles) {
            ++uses[&part->mesh()];
        }
    }
    Parts sharing;
    std::copy_if(parts.begin(), parts.end(), std::back_inserter(sharing), [&](const MeshVisualization* part) {
        const Mesh& mesh = part->mesh();
        return part->canShare() && SurfaceArrays::canHold(mesh, part->placement()) &&
               (mesh.triangleCount() <= mostRepeatedTriangles || uses[&mesh] == 1);
    });
    return sharing;
}

void SharedSurfaces::addBatches(const Parts& parts, bool closed, OruOglGeometry& geometry)
{
    for (const SurfaceGroup& group : SurfaceGroup::groupsOf(parts)) {
        auto batch = std::make_unique<SurfaceBatch>(*this, group, closed);
        const bool done = batch->upload(geometry);
        oru::debug_logger::debuglogger().ensure(done, "no room for parts of " + model_.name().toStdString());
        if (done) {
            batches_.push_back(std::move(batch));
        }
    }
}

void SharedSurfaces::draw(const OruVisualization::DrawContext& context)
{
    followChanges();
    if (batches_.empty()) {
        return;
    }
    if (!batches_.front()->belongsTo(context.geometry)) {
        makeAnew(context.geometry);
    }
    view_ = PartView::of(context);
    const Matrix& view = context.modelView;
    const Vector3 forward(-view(0, 2), -view(1, 2), -view(2, 2));
    std::sort(batches_.begin(), batches_.end(),
              [&](const auto& a, const auto& b) { return a->distance(forward) < b->distance(forward); });
    const auto volume = OruVisViewVolume::ofView(view, context.projection, context.viewport);
    const EvenStep step;
    for (const auto& batch : batches_) {
        batch->draw(volume, forward);
    }
}

} // namespace hostkit
