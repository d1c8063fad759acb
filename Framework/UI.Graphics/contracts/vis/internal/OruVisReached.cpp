#include "contracts/vis/internal/OruVisReached.h"

#include "contracts/core/OruModified.h"
#include "contracts/core/OruProperties.h"
#include "contracts/math/Vector3.h"
#include "contracts/vis/OruVisualization.h"

#include <algorithm>
#include <utility>

namespace {

using Kelvar::Math::BoundingBox;
using Kelvar::Math::Matrix;
using Kelvar::Math::Vector3;

bool finite(const BoundingBox& box)
{
    return box.min().isFinite() && box.max().isFinite();
}

/// Distance along the view from the eye's plane to the nearest point of the box; less is nearer.
double viewDistance(const BoundingBox& box, const Matrix& modelView)
{
    const Vector3 low = box.min();
    const Vector3 high = box.max();
    double toEye = 0.0;
    for (int axis = 0; axis < 3; ++axis) {
        const double factor = modelView(axis, 2);
        toEye += factor * (factor < 0.0 ? low[axis] : high[axis]);
    }
    return -toEye;
}

} // namespace

OruVisReached::OruVisReached(const OruModified& list)
    : content_(list)
{}

void OruVisReached::append(OruVisualization* entry)
{
    if (removed_.contains(entry)) {
        takeOutRemoved(); // the one that was there before
    }
    constexpr std::uint64_t neverAsked = 0;
    entries_.push_back(Entry{entry, neverAsked, BoundingBox(), 0.0, 0, false, false});
    entriesStale_ = true;
    boundsStale_ = true;
    orderStale_ = true;
}

void OruVisReached::remove(const OruProperties* entry)
{
    removed_.insert(entry);
    entriesStale_ = true;
    boundsStale_ = true;
    orderStale_ = true;
}

/// All at once: one by one it would cost a look through the list each time.
void OruVisReached::takeOutRemoved()
{
    if (removed_.isEmpty()) {
        return;
    }
    entries_.erase(std::remove_if(entries_.begin(), entries_.end(),
                                  [this](const Entry& entry) { return removed_.contains(entry.object); }),
                   entries_.end());
    removed_.clear();
}

OruVisReached::Objects OruVisReached::all()
{
    takeOutRemoved();
    Objects objects;
    objects.reserve(entries_.size());
    for (const Entry& entry : entries_) {
        objects.push_back(entry.object);
    }
    return objects;
}

const BoundingBox& OruVisReached::bounds()
{
    refresh();
    return bounds_;
}

double OruVisReached::rim()
{
    refresh();
    return rim_;
}

OruVisReached::Indices OruVisReached::groupIn(const OruVisViewVolume& volume) const
{
    Indices found;
    hierarchy_.collect(volume, found);
    for (std::uint32_t& index : found) {
        index = group_[index];
    }
    return found;
}

OruVisReached::Objects OruVisReached::inScene(const OruVisViewVolume& volume, const Matrix& modelView)
{
    refresh();
    std::vector<std::pair<double, std::uint32_t>> inView;
    for (const std::uint32_t index : groupIn(volume)) {
        inView.emplace_back(viewDistance(entries_[index].box, modelView), index);
    }
    std::sort(inView.begin(), inView.end());

    Objects objects;
    objects.reserve(ahead_.size() + inView.size() + behind_.size());
    const auto take = [&](std::uint32_t index) { objects.push_back(entries_[index].object); };
    std::for_each(ahead_.begin(), ahead_.end(), take);
    for (const auto& [distance, index] : inView) {
        take(index);
    }
    std::for_each(behind_.begin(), behind_.end(), take);
    return objects;
}

OruVisReached::Objects OruVisReached::inFront(const OruVisViewVolume& volume)
{
    refresh();
    Indices reached = groupIn(volume);
    reached.insert(reached.end(), ahead_.begin(), ahead_.end());
    reached.insert(reached.end(), behind_.begin(), behind_.end());
    std::sort(reached.begin(), reached.end(), [this](std::uint32_t a, std::uint32_t b) {
        return std::make_pair(entries_[a].order, a) < std::make_pair(entries_[b].order, b);
    });
    Objects objects;
    objects.reserve(reached.size());
    for (const std::uint32_t index : reached) {
        objects.push_back(entries_[index].object);
    }
    return objects;
}

void OruVisReached::refresh()
{
    if (content_.modified()) {
        entriesStale_ = true;
        content_.reset();
    }
    if (!entriesStale_) {
        return;
    }
    takeOutRemoved();
    for (Entry& entry : entries_) {
        refreshEntry(entry);
    }
    if (boundsStale_) {
        rebuildBounds();
    }
    if (orderStale_) {
        rebuildOrder();
    }
    if (movedBoxes_ > 0) {
        updateHierarchy();
    }
    // Only now, so that an entry whose bounds() threw is asked again.
    entriesStale_ = false;
}

void OruVisReached::refreshEntry(Entry& entry)
{
    const OruVisualization& object = *entry.object;
    if (entry.revision == object.subtreeRevision()) {
        return;
    }
    Entry now{entry.object, object.subtreeRevision(), BoundingBox(), 0.0, object.drawOrder(), false, false};
    now.visible = object.visible.value();
    if (now.visible) {
        now.box = object.bounds();
        now.rim = object.rim();
    }
    const bool onlyInView = object.reach() == OruVisualization::Reach::WhenInView;
    now.grouped = now.visible && onlyInView && now.box.defined() && finite(now.box);
    boundsStale_ = boundsStale_ || now.box != entry.box || now.rim != entry.rim;
    orderStale_ = orderStale_ || now.visible != entry.visible || now.grouped != entry.grouped;
    if (now.grouped && now.box != entry.box) {
        ++movedBoxes_;
    }
    entry = now;
}

void OruVisReached::rebuildBounds()
{
    bounds_ = BoundingBox();
    rim_ = 0.0;
    for (const Entry& entry : entries_) {
        bounds_.add(entry.box);
        rim_ = std::max(rim_, entry.rim);
    }
    boundsStale_ = false;
}

void OruVisReached::rebuildOrder()
{
    ahead_.clear();
    behind_.clear();
    group_.clear();
    for (std::size_t i = 0; i < entries_.size(); ++i) {
        const auto index = static_cast<std::uint32_t>(i);
        if (entries_[i].grouped) {
            group_.push_back(index);
        } else if (entries_[i].visible) {
            (group_.empty() ? ahead_ : behind_).push_back(index);
        }
    }
    orderStale_ = false;
    // Another group has another hierarchy.
    refits_ = group_.size() + 1;
    movedBoxes_ = 1;
}

void OruVisReached::updateHierarchy()
{
    std::vector<BoundingBox> boxes;
    boxes.reserve(group_.size());
    for (const std::uint32_t index : group_) {
        boxes.push_back(entries_[index].box);
    }
    refits_ += movedBoxes_;
    movedBoxes_ = 0;
    // Once as many boxes moved as there are, the tree is as loose as it may get.
    if (refits_ > group_.size()) {
        hierarchy_.build(boxes);
        refits_ = 0;
    } else {
        hierarchy_.refit(boxes);
    }
}
