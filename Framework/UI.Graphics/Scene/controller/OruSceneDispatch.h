#pragma once

#include "Scene/controller/IOruSceneController.h"
#include "Scene/controller/OruSceneController.h"
#include "Scene/controller/OruSceneHandlerCall.h"
#include "contracts/vis/IOruVisEventHandler.h"

#include <boost/shared_ptr.hpp>

// The one way in which a hit is told: to the object's handler first, then to the host. Either may do anything
// in its call, so nothing of a record or of the controller is used across one but copies.

namespace oru {

/// Calls the record's handler if it lives, and holds it for just that long. False: there was nobody to tell.
template <typename Call>
bool tellHandler(const OruSceneController::CurrentHitRecord& record, Call call)
{
    const boost::shared_ptr<IOruVisEventHandler> handler = record.handler.lock();
    if (!handler) {
        return false;
    }
    const OruSceneHandlerCall underWay(*handler, record.visualization);
    return call(*handler);
}

/// Calls the host's controller if there is one. It gets a copy of the pointer, since a call may replace it.
template <typename Call>
// NOLINTNEXTLINE(performance-unnecessary-value-param)
bool tellHost(boost::shared_ptr<IOruSceneController> host, Call call)
{
    return host && call(*host);
}

/// The object of a record; null once the handler that stands for it is gone, or lives on only because it is
/// being called.
inline const OruVisualization* liveVisualization(const OruSceneController::CurrentHitRecord& record)
{
    const boost::shared_ptr<IOruVisEventHandler> handler = record.handler.lock();
    const bool lives = handler && !OruSceneHandlerCall::hasDestroyed(*handler, record.visualization);
    return lives ? record.visualization : nullptr;
}

} // namespace oru
