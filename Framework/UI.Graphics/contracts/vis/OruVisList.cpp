#include "contracts/vis/OruVisList.h"

#include "contracts/core/OruModifiedGroup.h"
#include "contracts/core/OruProperties.h"
#include "contracts/math/BoundingBox.h"
#include "contracts/ogl/OruOglStackDepths.h"
#include "contracts/vis/OruVisHitRecordList.h"
#include "contracts/vis/OruVisImage.h"
#include "contracts/vis/OruVisLight.h"
#include "contracts/vis/OruVisLightList.h"
#include "contracts/vis/OruVisPickVolume.h"
#include "contracts/vis/OruVisTriad.h"
#include "contracts/vis/OruVisViewpoint.h"
#include "contracts/vis/internal/OruVisDeferred.h"
#include "contracts/vis/internal/OruVisReached.h"
#include "contracts/vis/internal/OruVisWalk.h"

#include <algorithm>
#include <memory>
#include <stdexcept>
#include <utility>

const QString OruVisList::typeString = QStringLiteral("vis.list");

namespace {

using Kelvar::Math::BoundingBox;

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

OruVisList::OruVisList(OruModifiedGroup& modifiedGroup, const QString& name)
    : OruVisualization(modifiedGroup, typeString)
    , reached_(std::make_unique<OruVisReached>())
{
    OruProperties::rename(name);
}

OruVisList::~OruVisList()
{
    for (OruVisWalk* walk = walk_; walk; walk = walk->outer()) {
        walk->end();
    }
}

bool OruVisList::insert(OruVisualization* entry, bool member)
{
    if (!OruProperties::insert(entry, member)) {
        return false;
    }
    if (newcomers_.empty() && !inPass()) {
        reached_->append(entry);
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

/// Passes of this list, and of the lists below it on the way, come to `object`: all of them are shown, and
/// none is a newcomer.
bool OruVisList::reaches(const OruVisualization& object) const
{
    const OruProperties* node = &object;
    while (node && node != this) {
        const auto* const shown = dynamic_cast<const OruVisualization*>(node);
        const auto* const list = dynamic_cast<const OruVisList*>(node->parent());
        if ((shown && !shown->visible.value()) || (list && list->hasNewcomer(node))) {
            return false;
        }
        node = node->parent();
    }
    return node;
}

bool OruVisList::hasNewcomer(const OruProperties* child) const
{
    return std::find(newcomers_.begin(), newcomers_.end(), child) != newcomers_.end();
}

OruVisList::Objects OruVisList::takeInNewcomers()
{
    Objects takenIn = std::exchange(newcomers_, {});
    for (OruVisualization* const entry : takenIn) {
        reached_->append(entry);
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
    newcomers_.erase(std::remove(newcomers_.begin(), newcomers_.end(), child), newcomers_.end());
    reached_->remove(child);
    for (OruVisWalk* walk = walk_; walk; walk = walk->outer()) {
        walk->leaveOut(child);
    }
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
        forEach(reached_->prepared(), [&](OruVisualization& entry) { entry.update(context); });
    });
}

void OruVisList::resize(const DrawContext& context)
{
    guarded([&] {
        const Objects newcomers = takeInNewcomers();
        if (forEach(newcomers, [&](OruVisualization& entry) { entry.update(context); })) {
            forEach(reached_->prepared(), [&](OruVisualization& entry) { entry.resize(context); });
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
        OruVisWalk walk(walk_, reached_->drawn(drawn_, context.modelView));
        const auto isReached = [&](const OruVisualization& object) {
            return walk.listLives() && reaches(object);
        };
        const std::shared_ptr<OruVisDeferred> deferred = OruVisDeferred::opened(context, isReached);
        walk.run([&](OruVisualization& entry) { entry.draw3d(context); });
        if (deferred) {
            deferred->draw();
        }
    });
}

void OruVisList::draw2d(const DrawContext& context)
{
    guarded([&] { forEach(inFront(drawn_), [&](OruVisualization& entry) { entry.draw2d(context); }); });
}

OruVisHitRecordList OruVisList::select3d(const SelectContext& context)
{
    OruVisHitRecordList hits;
    guarded([&] {
        picked_ = OruVisPickVolume(context, rim()).volume();
        forEach(reached_->picked(picked_, context.modelView),
                [&](OruVisualization& entry) { hits.insert(entry.select3d(context)); });
    });
    return hits;
}

OruVisHitRecordList OruVisList::select2d(const SelectContext& context)
{
    OruVisHitRecordList hits;
    guarded([&] {
        forEach(inFront(picked_), [&](OruVisualization& entry) { hits.insert(entry.select2d(context)); });
    });
    return hits;
}

BoundingBox OruVisList::bounds() const
{
    return reached_->bounds();
}

bool OruVisList::onlyPicked() const
{
    return newcomers_.empty() && reached_->onlyPicked();
}

void OruVisList::askAgain()
{
    reached_->askAgain();
    boundsChanged();
}

void OruVisList::noteChange(const OruModified& child, const OruModified& /*origin*/)
{
    reached_->noteChange(child);
}

double OruVisList::rim() const
{
    return reached_->rim();
}

/// The next 2D pass is another frame's, unless a 3D pass comes first and says what it shows.
OruVisList::Objects OruVisList::inFront(OruVisViewVolume& volume) const
{
    return reached_->inFront(std::exchange(volume, OruVisViewVolume()));
}

/// False: the list is gone.
template <typename Operation>
bool OruVisList::forEach(Objects objects, Operation operation)
{
    OruVisWalk walk(walk_, std::move(objects));
    walk.run(operation);
    return walk.listLives();
}
