#include "contracts/vis/internal/OruVisDeferred.h"

#include "contracts/ogl/OruOglFunctions.h"
#include "contracts/ogl/OruOglGl.h"
#include "contracts/ogl/OruOglTransparency.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace {

float depthOf(const OruVisualization& object, const Kelvar::Math::Matrix& modelView)
{
    const Kelvar::Math::BoundingBox box = object.bounds();
    const float depth = modelView.transform(box.center()).z;
    return box.defined() && std::isfinite(depth) ? depth : -std::numeric_limits<float>::infinity();
}

} // namespace

std::shared_ptr<OruVisDeferred> OruVisDeferred::opened(const Context& context, const Reached& isReached)
{
    if (!context.deferred_.expired()) {
        return nullptr;
    }
    auto deferred = std::make_shared<OruVisDeferred>(context, isReached);
    context.deferred_ = deferred;
    return deferred;
}

OruVisDeferred::OruVisDeferred(const Context& context, Reached isReached)
    : isReached_(std::move(isReached))
    , contexts_(1, context)
{
    contexts_.front().keepDeferredInside();
}

bool OruVisDeferred::add(OruVisualization& object, const Context& context)
{
    if (drawing_) {
        return false;
    }
    entries_.push_back(Entry{oru::view_ptr<OruVisualization>(object), indexOf(context),
                             depthOf(object, context.modelView), isReached_(object)});
    return true;
}

/// Most objects of a pass share their matrices with the one before.
std::size_t OruVisDeferred::indexOf(const Context& context)
{
    const Context& last = contexts_.back();
    if (last.modelView != context.modelView || last.projection != context.projection) {
        contexts_.push_back(context);
        contexts_.back().keepDeferredInside();
    }
    return contexts_.size() - 1;
}

void OruVisDeferred::draw()
{
    drawing_ = true;
    if (entries_.empty()) {
        return;
    }
    std::stable_sort(entries_.begin(), entries_.end(),
                     [](const Entry& a, const Entry& b) { return a.depth < b.depth; });
    const OruOglTransparency state;
    for (const Entry& entry : entries_) {
        if (stillThere(entry)) {
            load(entry.context);
            entry.object->drawTransparent3d(contexts_[entry.context]);
        }
    }
    load(0);
}

bool OruVisDeferred::stillThere(const Entry& entry) const
{
    return entry.object && (!entry.reached || isReached_(*entry.object));
}

/// Matrix mode GL_MODELVIEW is that of the pass. Not pushed: the projection's stack may have room for two.
void OruVisDeferred::load(std::size_t context)
{
    if (context == loaded_) {
        return;
    }
    glMatrixMode(GL_PROJECTION);
    glLoadMatrix(contexts_[context].projection);
    glMatrixMode(GL_MODELVIEW);
    glLoadMatrix(contexts_[context].modelView);
    loaded_ = context;
}
