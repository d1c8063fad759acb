#pragma once

#include "contracts/core/OruViewPtr.h"
#include "contracts/vis/IOruVisEventHandler.h"
#include "contracts/vis/OruVisualization.h"

/// A call of an object's handler, for as long as it lasts.
///
/// The dispatch holds a handler while it calls it, so the handler outlives its object when the call destroys
/// that. What the handler does later in the same call, events of its own included, must not find the object
/// by its handler then; these scopes know better.
class OruSceneHandlerCall
{
public:
    /// The object is alive, unless a call of the same handler that is under way has destroyed it. It may be
    /// null.
    OruSceneHandlerCall(const IOruVisEventHandler& handler, const OruVisualization* visualization)
        : handler_(&handler)
        , visualization_(visualization)
        , outer_(innermost_)
    {
        if (const OruSceneHandlerCall* const same = find(handler, visualization)) {
            object_ = same->object_;
        } else if (visualization) {
            object_ = oru::view_ptr<const OruProperties>(*visualization);
        }
        innermost_ = this;
    }
    ~OruSceneHandlerCall() { innermost_ = outer_; }
    OruSceneHandlerCall(const OruSceneHandlerCall&) = delete;
    OruSceneHandlerCall& operator=(const OruSceneHandlerCall&) = delete;

    /// A call of this handler that is under way has seen this object die.
    static bool hasDestroyed(const IOruVisEventHandler& handler, const OruVisualization* visualization)
    {
        const OruSceneHandlerCall* const call = find(handler, visualization);
        return call && !call->object_;
    }

private:
    static const OruSceneHandlerCall* find(const IOruVisEventHandler& handler,
                                           const OruVisualization* visualization)
    {
        const OruSceneHandlerCall* call = innermost_;
        while (call && (call->handler_ != &handler || call->visualization_ != visualization)) {
            call = call->outer_;
        }
        return call;
    }

    inline static thread_local const OruSceneHandlerCall* innermost_ = nullptr;

    const IOruVisEventHandler* handler_;
    const OruVisualization* visualization_;
    oru::view_ptr<const OruProperties> object_;
    const OruSceneHandlerCall* outer_;
};
