#pragma once

#include "Scene/controller/IOruSceneController.h"
#include "Scene/controller/OruSceneController.h"
#include "contracts/vis/IOruVisEventHandler.h"

#include <boost/shared_ptr.hpp>

// The one way in which a hit is told: to the object's handler first, then to the host. Either may do anything
// in its call, so nothing of a record is used across one but copies, and an object is handed on, never read.

namespace oru {

/// Calls the record's handler if it lives, and holds it for just that long. False: there was nobody to tell.
template <typename Call>
bool tellHandler(const OruSceneController::CurrentHitRecord& record, Call call)
{
    const boost::shared_ptr<IOruVisEventHandler> handler = record.handler.lock();
    return handler && call(*handler);
}

/// Calls the host's controller if there is one. It gets a copy of the pointer, since a call may replace it.
template <typename Call>
// NOLINTNEXTLINE(performance-unnecessary-value-param)
bool tellHost(boost::shared_ptr<IOruSceneController> host, Call call)
{
    return host && call(*host);
}

/// Tells the handler, then the host that is in force by then. The host is handed the object, too: null once
/// the handler, which stands for the object's life, is gone. True if one of them changed something.
template <typename HandlerCall, typename HostCall>
bool tellBoth(const OruSceneController::CurrentHitRecord& record,
              const boost::shared_ptr<IOruSceneController>& host, HandlerCall handlerCall, HostCall hostCall)
{
    const bool byHandler = tellHandler(record, handlerCall);
    const OruVisualization* const object = record.hasHandler() ? record.visualization : nullptr;
    const bool byHost =
        tellHost(host, [&](IOruSceneController& controller) { return hostCall(controller, object); });
    return byHandler || byHost;
}

} // namespace oru
