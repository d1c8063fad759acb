#include "contracts/vis/internal/OruVisReached.h"

#include "contracts/core/OruModified.h"
#include "contracts/core/OruProperties.h"
#include "contracts/math/Vector3.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace {

using Kelvar::Math::BoundingBox;
using Kelvar::Math::Matrix;
using Kelvar::Math::Vector3;

/// Of more changes than this, and than an entry in so many, a look at all entries costs no more than one at
/// each.
constexpr std::size_t fewChanges = 64;
constexpr std::size_t entriesPerChange = 16;

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

/// Makes `index` one of the indices, or none of them.
void setMember(std::vector<std::uint32_t>& indices, std::uint32_t index, bool member)
{
    const auto place = std::lower_bound(indices.begin(), indices.end(), index);
    const bool present = place != indices.end() && *place == index;
    if (member && !present) {
        indices.insert(place, index);
    } else if (!member && present) {
        indices.erase(place);
    }
}

} // namespace

void OruVisReached::append(OruVisualization* entry)
{
    if (removed_.contains(entry)) {
        takeOutRemoved(); // the one that was there before
    }
    const auto index = static_cast<Index>(entries_.size());
    entries_.emplace_back(entry);
    entry->placeInList_ = index;
    prepared_.push_back(index);
    hierarchyStale_ = true;
    staleAll();
}

void OruVisReached::remove(const OruProperties* entry)
{
    removed_.insert(entry);
    hierarchyStale_ = true;
    staleAll();
}

void OruVisReached::askAgain()
{
    for (Entry& entry : entries_) {
        entry.revision = 0;
    }
    staleAll();
}

void OruVisReached::staleAll()
{
    allStale_ = true;
    reachesKnown_ = false;
    stale_.clear();
}

void OruVisReached::noteChange(const OruModified& entry)
{
    if (allStale_) {
        reachesKnown_ = false;
        return;
    }
    if (stale_.empty() || stale_.back() != &entry) {
        stale_.push_back(&entry);
    }
    if (stale_.size() > std::max(fewChanges, entries_.size() / entriesPerChange)) {
        staleAll();
    }
}

/// What is in stale_ may be a newcomer of the list, which is no entry yet.
bool OruVisReached::holds(const OruModified* entry) const
{
    const Index index = static_cast<const OruVisualization*>(entry)->placeInList_;
    return index < entries_.size() && entries_[index].object == entry;
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
    prepared_.clear();
    for (Index index = 0; index < entries_.size(); ++index) {
        entries_[index].object->placeInList_ = index;
        if (entries_[index].reach != Reach::UnderPick) {
            prepared_.push_back(index);
        }
    }
}

/// So that who is no more reached only under a pick is prepared before it is drawn. Its box is asked later,
/// when it is prepared.
void OruVisReached::askReaches()
{
    takeOutRemoved();
    if (!allStale_) {
        for (const OruModified* const entry : stale_) {
            if (holds(entry)) {
                askReach(static_cast<const OruVisualization*>(entry)->placeInList_);
            }
        }
        return;
    }
    if (reachesKnown_) {
        return;
    }
    prepared_.clear();
    for (Index index = 0; index < entries_.size(); ++index) {
        entries_[index].reach = entries_[index].object->reach();
        if (entries_[index].reach != Reach::UnderPick) {
            prepared_.push_back(index);
        }
    }
    reachesKnown_ = true;
}

void OruVisReached::askReach(Index index)
{
    Entry& entry = entries_[index];
    const Reach before = std::exchange(entry.reach, entry.object->reach());
    if ((before == Reach::UnderPick) != (entry.reach == Reach::UnderPick)) {
        setMember(prepared_, index, entry.reach != Reach::UnderPick);
    }
}

OruVisReached::Objects OruVisReached::prepared()
{
    askReaches();
    Objects objects;
    objects.reserve(prepared_.size());
    for (const Index index : prepared_) {
        objects.push_back(entries_[index].object);
    }
    return objects;
}

bool OruVisReached::onlyPicked()
{
    askReaches();
    return prepared_.empty();
}

const BoundingBox& OruVisReached::bounds()
{
    refresh();
    if (boundsStale_) {
        rebuildBounds();
    }
    return bounds_;
}

double OruVisReached::rim()
{
    refresh();
    if (rimStale_) {
        rebuildRim();
    }
    return rim_;
}

OruVisReached::Objects OruVisReached::drawn(const OruVisViewVolume& volume, const Matrix& modelView)
{
    refresh();
    Indices inView;
    if (!prepared_.empty()) {
        readyHierarchy();
        hierarchy_.collectMarked(volume, inView);
    }
    return inOrder(inView, modelView);
}

OruVisReached::Objects OruVisReached::picked(const OruVisViewVolume& volume, const Matrix& modelView)
{
    refresh();
    readyHierarchy();
    Indices inView;
    hierarchy_.collect(volume, inView);
    return inOrder(inView, modelView);
}

OruVisReached::Objects OruVisReached::inOrder(const Indices& inView, const Matrix& modelView) const
{
    std::vector<std::pair<double, Index>> byDistance;
    byDistance.reserve(inView.size());
    for (const Index index : inView) {
        byDistance.emplace_back(viewDistance(entries_[index].box, modelView), index);
    }
    std::sort(byDistance.begin(), byDistance.end());

    Objects objects;
    objects.reserve(always_.size() + inView.size());
    const auto take = [&](Index index) { objects.push_back(entries_[index].object); };
    const auto behind = std::lower_bound(always_.begin(), always_.end(), firstGrouped_);
    std::for_each(always_.begin(), behind, take);
    for (const auto& [distance, index] : byDistance) {
        take(index);
    }
    std::for_each(behind, always_.end(), take);
    return objects;
}

OruVisReached::Objects OruVisReached::inFront(const OruVisViewVolume& volume)
{
    refresh();
    Indices reached = always_;
    if (!prepared_.empty()) {
        readyHierarchy();
        hierarchy_.collectMarked(volume, reached);
    }
    std::sort(reached.begin(), reached.end(), [this](Index a, Index b) {
        return std::make_pair(entries_[a].order, a) < std::make_pair(entries_[b].order, b);
    });
    Objects objects;
    objects.reserve(reached.size());
    for (const Index index : reached) {
        objects.push_back(entries_[index].object);
    }
    return objects;
}

/// Each question is off the list once it is answered, so that an entry whose bounds() threw is asked again.
void OruVisReached::refresh()
{
    askReaches();
    if (allStale_) {
        refreshAll();
        return;
    }
    while (!stale_.empty()) {
        if (holds(stale_.back())) {
            refreshOne(static_cast<const OruVisualization*>(stale_.back())->placeInList_);
        }
        stale_.pop_back();
    }
}

void OruVisReached::refreshAll()
{
    Indices always;
    std::size_t changed = 0;
    auto firstGrouped = static_cast<Index>(entries_.size());
    for (Index index = 0; index < entries_.size(); ++index) {
        if (entries_[index].revision != entries_[index].object->subtreeRevision()) {
            const Entry before = std::exchange(entries_[index], asked(entries_[index]));
            changed += before.box != entries_[index].box ? 1 : 0;
        }
        if (entries_[index].always) {
            always.push_back(index);
        } else if (entries_[index].grouped) {
            firstGrouped = std::min(firstGrouped, index);
        }
    }
    always_ = std::move(always);
    firstGrouped_ = firstGrouped;
    boundsStale_ = true;
    rimStale_ = true;
    allStale_ = false;
    if (!hierarchyStale_) {
        hierarchy_.refit(objects());
        refits_ += changed;
    }
}

void OruVisReached::refreshOne(Index index)
{
    // It is wanted at the next pass anyway, and without it each change would cost a look at all boxes.
    readyHierarchy();
    Entry& entry = entries_[index];
    const Entry before = std::exchange(entry, asked(entry));
    if (before.always != entry.always) {
        setMember(always_, index, entry.always);
    }
    if (before.grouped != entry.grouped) {
        updateFirstGrouped(index);
    }
    boundsStale_ = boundsStale_ || before.box != entry.box;
    rimStale_ = rimStale_ || before.rim != entry.rim;
    hierarchy_.set(index, objectOf(entry));
    refits_ += before.box != entry.box ? 1 : 0;
}

/// What an entry says of itself now. Its reach has been asked already.
OruVisReached::Entry OruVisReached::asked(const Entry& before) const
{
    const OruVisualization& object = *before.object;
    Entry now(before.object);
    now.revision = object.subtreeRevision();
    now.reach = before.reach;
    now.order = object.drawOrder();
    if (!object.visible.value()) {
        return now;
    }
    now.box = object.bounds();
    now.rim = object.rim();
    now.grouped = now.reach != Reach::Always && now.box.defined() && finite(now.box);
    now.always = !now.grouped && now.reach != Reach::UnderPick;
    return now;
}

OruVisHierarchy::Object OruVisReached::objectOf(const Entry& entry)
{
    return {entry.grouped ? entry.box : BoundingBox(), entry.grouped && entry.reach == Reach::WhenInView};
}

void OruVisReached::updateFirstGrouped(Index index)
{
    firstGrouped_ = std::min(firstGrouped_, index);
    while (firstGrouped_ < entries_.size() && !entries_[firstGrouped_].grouped) {
        ++firstGrouped_;
    }
}

void OruVisReached::rebuildBounds()
{
    bounds_ = BoundingBox();
    if (hierarchyStale_) {
        for (const Entry& entry : entries_) {
            bounds_.add(entry.box);
        }
    } else {
        bounds_ = hierarchy_.bounds();
        for (const Index index : always_) {
            bounds_.add(entries_[index].box);
        }
    }
    boundsStale_ = false;
}

void OruVisReached::rebuildRim()
{
    rim_ = 0.0;
    for (const Entry& entry : entries_) {
        rim_ = std::max(rim_, entry.rim);
    }
    rimStale_ = false;
}

/// Once as many boxes changed as there are, the tree is as loose as it may get.
void OruVisReached::readyHierarchy()
{
    if (hierarchyStale_ || refits_ > entries_.size()) {
        hierarchy_.build(entries_.size(), objects());
        hierarchyStale_ = false;
        refits_ = 0;
    }
}

/// One for each entry.
OruVisHierarchy::ObjectAt OruVisReached::objects() const
{
    return [this](Index index) { return objectOf(entries_[index]); };
}
