#include "contracts/vis/OruVisList.h"

#include "contracts/ogl/OruOglStackDepths.h"
#include "contracts/vis/OruVisImage.h"
#include "contracts/vis/OruVisLightList.h"
#include "contracts/vis/OruVisPickVolume.h"
#include "contracts/vis/OruVisTriad.h"
#include "contracts/vis/OruVisViewpoint.h"

#include <algorithm>
#include <memory>
#include <stdexcept>
#include <utility>

const QString OruVisList::typeString = QString("vis.list");

namespace {

using Kelvar::Math::BoundingBox;
using Kelvar::Math::Matrix;
using Kelvar::Math::Vector3;

template <typename T>
std::unique_ptr<OruVisualization> made(OruModifiedGroup& group)
{
    return std::make_unique<T>(group);
}

std::unique_ptr<OruVisualization> madeList(OruModifiedGroup& group)
{
    return std::make_unique<OruVisList>(group, OruVisList::typeString);
}

/// What a list can make by type text.
struct Maker
{
    const QString& type;
    std::unique_ptr<OruVisualization> (*make)(OruModifiedGroup& group);
};

const Maker makers[] = {
    {OruVisViewpoint::typeString, made<OruVisViewpoint>},
    {OruVisLightList::typeString, made<OruVisLightList>},
    {OruVisLight::typeString, made<OruVisLight>},
    {OruVisImage::typeString, made<OruVisImage>},
    {OruVisTriad::typeString, made<OruVisTriad>},
    {OruVisList::typeString, madeList},
};

/// Null for a type that nobody knows.
std::unique_ptr<OruVisualization> makeByType(const QString& type, OruModifiedGroup& group)
{
    for (const Maker& maker : makers) {
        if (maker.type == type) {
            return maker.make(group);
        }
    }
    return nullptr;
}

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

/// Runs a list's operation; when it throws, GL's stacks go back to where they were.
template <typename Operation>
void guarded(Operation operation)
{
    const OruOglStackDepths depths;
    try {
        operation();
    } catch (...) {
        depths.restore();
        throw;
    }
}

} // namespace

/// One pass on its way over a list's entries. The list knows it, so what leaves the list leaves the walk, and
/// no pointer in it is ever a dead one.
class OruVisList::Walk
{
public:
    Walk(OruVisList& list, Objects objects)
        : list_(&list)
        , objects_(std::move(objects))
        , outer_(list.walk_)
    {
        list.walk_ = this;
    }
    ~Walk()
    {
        if (list_) {
            list_->walk_ = outer_;
        }
    }
    Walk(const Walk&) = delete;
    Walk& operator=(const Walk&) = delete;

    template <typename Operation>
    void run(Operation operation)
    {
        for (std::size_t i = 0; i < objects_.size(); ++i) {
            // Thousands of objects lie all over the memory: one is fetched while the one before is at work.
            __builtin_prefetch(objects_[std::min(i + 1, objects_.size() - 1)]);
            if (objects_[i]) {
                operation(*objects_[i]);
            }
        }
    }

    /// Passes over this object from now on; it may be dying.
    void leaveOut(const OruProperties* child)
    {
        std::replace_if(
            objects_.begin(), objects_.end(),
            [child](const OruVisualization* object) { return object == child; }, nullptr);
    }

    /// The list is dying: nothing is left to reach.
    void end()
    {
        list_ = nullptr;
        objects_.clear();
    }

    bool listLives() const { return list_; }
    Walk* outer() const { return outer_; }

private:
    OruVisList* list_;
    Objects objects_;
    Walk* outer_;
};

OruVisList::OruVisList(OruModifiedGroup& modifiedGroup, const QString& name)
    : OruVisualization(modifiedGroup, typeString)
    , contentWatcher_(*this)
{
    OruProperties::rename(name);
}

OruVisList::~OruVisList()
{
    for (Walk* walk = walk_; walk; walk = walk->outer()) {
        walk->end();
    }
}

bool OruVisList::insert(OruVisualization* entry, bool member)
{
    if (!OruProperties::insert(entry, member)) {
        return false;
    }
    if (newcomers_.empty() && !inPass()) {
        append(entry);
    } else {
        newcomers_.push_back(entry);
    }
    return true;
}

/// A pass reaches this list, or may do so yet.
bool OruVisList::inPass() const
{
    for (const OruProperties* node = this; node; node = node->parent()) {
        const auto* const list = dynamic_cast<const OruVisList*>(node);
        if (list && list->walk_) {
            return true;
        }
    }
    return false;
}

void OruVisList::append(OruVisualization* entry)
{
    constexpr std::uint64_t neverAsked = 0;
    entries_.push_back(Entry{entry, neverAsked, BoundingBox(), 0, false, false});
    entriesStale_ = true;
    boundsStale_ = true;
    passesStale_ = true;
}

OruVisList::Objects OruVisList::takeInNewcomers()
{
    Objects takenIn = std::exchange(newcomers_, {});
    for (OruVisualization* const entry : takenIn) {
        append(entry);
        boundsChanged(); // the lists above have these without it
    }
    return takenIn;
}

bool OruVisList::insert(OruProperties* child, bool member)
{
    auto* const entry = dynamic_cast<OruVisualization*>(child);
    return entry && insert(entry, member);
}

bool OruVisList::remove(OruProperties* child)
{
    if (!OruProperties::remove(child)) {
        return false;
    }
    // The child may be dying and no visualization any more, so nothing but its address counts.
    const auto isChild = [child](const OruVisualization* object) { return object == child; };
    const auto found = std::find_if(entries_.begin(), entries_.end(),
                                    [&](const Entry& entry) { return isChild(entry.object); });
    if (found != entries_.end()) {
        entries_.erase(found);
    }
    newcomers_.erase(std::remove_if(newcomers_.begin(), newcomers_.end(), isChild), newcomers_.end());
    for (Walk* walk = walk_; walk; walk = walk->outer()) {
        walk->leaveOut(child);
    }
    boundsStale_ = true;
    passesStale_ = true;
    return true;
}

OruVisualization& OruVisList::child(const QString& name, const QString& type)
{
    if (OruVisualization* const present = (*this)[name]) {
        return *present;
    }
    std::unique_ptr<OruVisualization> entry = makeByType(type, group);
    if (!entry) {
        entry = std::make_unique<OruVisualization>(group, type);
    }
    if (!entry->rename(name) || !insert(entry.get(), false)) {
        throw std::invalid_argument("no name for a visualization: \"" + name.toStdString() + "\"");
    }
    return *entry.release();
}

OruProperties* OruVisList::makeChild(const QString& /*name*/, const QString& type)
{
    return makeByType(type, group).release();
}

OruVisualization* OruVisList::operator[](const QString& name)
{
    return dynamic_cast<OruVisualization*>(childByName(name));
}

const OruVisualization* OruVisList::operator[](const QString& name) const
{
    return dynamic_cast<const OruVisualization*>(childByName(name));
}

void OruVisList::update(const DrawContext& context)
{
    guarded([&] {
        takeInNewcomers();
        forEach(all(), [&](OruVisualization& entry) { entry.update(context); });
    });
}

void OruVisList::resize(const DrawContext& context)
{
    guarded([&] {
        const Objects newcomers = takeInNewcomers();
        if (forEach(newcomers, [&](OruVisualization& entry) { entry.update(context); })) {
            forEach(all(), [&](OruVisualization& entry) { entry.resize(context); });
        }
    });
}

void OruVisList::draw3d(const DrawContext& context)
{
    if (!newcomers_.empty()) {
        // Who came while the list was told of a new size came ahead of the watcher's reset.
        touch();
    }
    guarded([&] {
        drawn_ = OruVisViewVolume::ofView(context.modelView, context.projection, context.viewport);
        forEach(scenePass(drawn_, context.modelView),
                [&](OruVisualization& entry) { entry.draw3d(context); });
    });
}

void OruVisList::draw2d(const DrawContext& context)
{
    guarded([&] { forEach(flatPass(drawn_), [&](OruVisualization& entry) { entry.draw2d(context); }); });
}

OruVisHitRecordList OruVisList::select3d(const SelectContext& context)
{
    OruVisHitRecordList hits;
    guarded([&] {
        picked_ = OruVisPickVolume(context).volume();
        forEach(scenePass(picked_, context.modelView),
                [&](OruVisualization& entry) { hits.insert(entry.select3d(context)); });
    });
    return hits;
}

OruVisHitRecordList OruVisList::select2d(const SelectContext& context)
{
    OruVisHitRecordList hits;
    guarded([&] {
        forEach(flatPass(picked_), [&](OruVisualization& entry) { hits.insert(entry.select2d(context)); });
    });
    return hits;
}

BoundingBox OruVisList::bounds() const
{
    refresh();
    return bounds_;
}

OruVisList::Objects OruVisList::all() const
{
    Objects objects;
    objects.reserve(entries_.size());
    for (const Entry& entry : entries_) {
        objects.push_back(entry.object);
    }
    return objects;
}

/// False: the list is gone.
template <typename Operation>
bool OruVisList::forEach(Objects objects, Operation operation)
{
    Walk walk(*this, std::move(objects));
    walk.run(operation);
    return walk.listLives();
}

OruVisList::Indices OruVisList::groupIn(const OruVisViewVolume& volume) const
{
    Indices found;
    hierarchy_.collect(volume, found);
    for (std::uint32_t& index : found) {
        index = group_[index];
    }
    return found;
}

OruVisList::Objects OruVisList::scenePass(const OruVisViewVolume& volume, const Matrix& modelView) const
{
    refresh();
    std::vector<std::pair<double, std::uint32_t>> inView;
    for (const std::uint32_t index : groupIn(volume)) {
        inView.emplace_back(viewDistance(entries_[index].box, modelView), index);
    }
    std::sort(inView.begin(), inView.end());

    Objects objects;
    objects.reserve(alwaysAhead_.size() + inView.size() + alwaysBehind_.size());
    const auto take = [&](std::uint32_t index) { objects.push_back(entries_[index].object); };
    std::for_each(alwaysAhead_.begin(), alwaysAhead_.end(), take);
    for (const auto& [distance, index] : inView) {
        take(index);
    }
    std::for_each(alwaysBehind_.begin(), alwaysBehind_.end(), take);
    return objects;
}

OruVisList::Objects OruVisList::flatPass(OruVisViewVolume& volume) const
{
    refresh();
    Indices reached = groupIn(volume);
    // The next 2D pass is another frame's, unless a 3D pass comes first and says what it shows.
    volume = OruVisViewVolume();
    reached.insert(reached.end(), alwaysAhead_.begin(), alwaysAhead_.end());
    reached.insert(reached.end(), alwaysBehind_.begin(), alwaysBehind_.end());
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

void OruVisList::refresh() const
{
    if (contentWatcher_.modified()) {
        entriesStale_ = true;
        contentWatcher_.reset();
    }
    if (!entriesStale_) {
        return;
    }
    for (Entry& entry : entries_) {
        refreshEntry(entry);
    }
    if (boundsStale_) {
        rebuildBounds();
    }
    if (passesStale_) {
        rebuildPasses();
    }
    if (movedBoxes_ > 0) {
        updateHierarchy();
    }
    // Only now, so that an entry whose bounds() threw is asked again.
    entriesStale_ = false;
}

void OruVisList::refreshEntry(Entry& entry) const
{
    const OruVisualization& object = *entry.object;
    if (entry.revision == object.subtreeRevision()) {
        return;
    }
    Entry now{entry.object, object.subtreeRevision(), BoundingBox(), object.drawOrder(), false, false};
    now.visible = object.visible.value();
    if (now.visible) {
        now.box = object.bounds();
    }
    now.grouped = now.visible && object.reach() == Reach::WhenInView && now.box.defined() && finite(now.box);
    boundsStale_ = boundsStale_ || now.box != entry.box;
    passesStale_ = passesStale_ || now.visible != entry.visible || now.grouped != entry.grouped;
    if (now.grouped && now.box != entry.box) {
        ++movedBoxes_;
    }
    entry = now;
}

void OruVisList::rebuildBounds() const
{
    bounds_ = BoundingBox();
    for (const Entry& entry : entries_) {
        bounds_.add(entry.box);
    }
    boundsStale_ = false;
}

void OruVisList::rebuildPasses() const
{
    alwaysAhead_.clear();
    alwaysBehind_.clear();
    group_.clear();
    for (std::size_t i = 0; i < entries_.size(); ++i) {
        const auto index = static_cast<std::uint32_t>(i);
        if (entries_[i].grouped) {
            group_.push_back(index);
        } else if (entries_[i].visible) {
            (group_.empty() ? alwaysAhead_ : alwaysBehind_).push_back(index);
        }
    }
    passesStale_ = false;
    // Another group has another hierarchy.
    refits_ = group_.size() + 1;
    movedBoxes_ = 1;
}

void OruVisList::updateHierarchy() const
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
