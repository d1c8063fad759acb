#pragma once

#include "Scene/controller/IOruSceneController.h"
#include "Scene/kelvar_scene_api.h"
#include "contracts/vis/IOruVisEventHandler.h"
#include "contracts/vis/OruVisHitRecord.h"

#include <QString>

#include <boost/shared_ptr.hpp>
#include <boost/weak_ptr.hpp>

class OruScene;
class OruSceneEventContext;
class OruSceneRender;
class OruVisualization;

/// Remembers what a press has grabbed and where the pointer last rested, and hands each event to the handler
/// of the object that was hit and then to the host's controller.
///
/// A record is live while the handler of its object lives; a live handler stands for a live object. What is
/// not live gets no call. Handlers and the host may do anything in a call: destroy the object, reset this
/// controller, call back into the scene. The hit test draws, so all operations run with the OpenGL context
/// current, between frames.
class KELVAR_SCENE_API OruSceneController
{
public:
    /// A hit with the one to tell about it.
    class KELVAR_SCENE_API CurrentHitRecord
    {
    public:
        CurrentHitRecord();
        CurrentHitRecord(const CurrentHitRecord& other);
        /// Takes the handler over and leaves the source without one; the rest is copied.
        CurrentHitRecord(CurrentHitRecord&& other) noexcept;
        CurrentHitRecord& operator=(const CurrentHitRecord& other);
        CurrentHitRecord& operator=(CurrentHitRecord&& other) noexcept;
        ~CurrentHitRecord();

        /// The record is live: its handler still exists.
        bool hasHandler() const;

        OruVisHitRecord hit;

        /// Weak: a record keeps no object alive.
        boost::weak_ptr<IOruVisEventHandler> handler;

        /// The object that was hit; not owned, and not to be read unless the record is live. May be null.
        const OruVisualization* visualization;
    };

    OruSceneController();
    OruSceneController(const OruSceneController& other);
    OruSceneController(OruSceneController&& other) noexcept;
    OruSceneController& operator=(const OruSceneController& other);
    OruSceneController& operator=(OruSceneController&& other) noexcept;

    /// Tells nobody anything: an object that is held at that moment gets no release.
    ~OruSceneController();

    /// Makes `newController` the host's controller; empty: none. A different one than before first ends what
    /// the old one has seen: the held object's handler gets OnRelease, the handler last rested on
    /// OnHoverLeave. Called from within one of these two, it tells nobody, and its controller only stands
    /// until these calls are over and the outer one's takes its place.
    void reset(const boost::shared_ptr<IOruSceneController>& newController, OruSceneRender& render);

    /// Grabs what lies under the pointer, unless something is held already. Always false.
    bool OnMouseDown(OruSceneRender& render, const OruSceneEventContext& ctx);

    /// Tells the held object and the host that the pointer moved. True if one of them changed something.
    bool OnMouseDrag(OruSceneRender& render, const OruSceneEventContext& ctx);

    /// Tells the object last rested on that the pointer leaves, and the one under it that it enters; the same
    /// object gets both. `tooltip` is what these may write to. True if anyone changed something.
    bool OnMouseMove(OruSceneRender& render, const OruSceneEventContext& ctx, QString& tooltip);

    /// Lets the held object go: first as a drop if another one lies under the pointer, then as a release.
    /// True if anyone changed something; false if nothing was held.
    bool OnMouseUp(OruSceneRender& render, const OruSceneEventContext& ctx);

    /// A click: on a label of the triad it turns the view (`ctx.modelView`, and the stored viewpoint); on
    /// another object it goes to its handler and the host; on nothing, to the host alone. True if something
    /// changed.
    bool OnMouseClick(OruScene& scene, OruSceneEventContext& ctx);

private:
    bool hitTop(OruSceneRender& render, const OruSceneEventContext& ctx, CurrentHitRecord& record);
    bool leaveHovered(OruSceneRender& render, QString& tooltip);
    bool enterHovered(OruSceneRender& render, QString& tooltip);
    bool drop(OruSceneRender& render, const CurrentHitRecord& held, const CurrentHitRecord& released);
    bool release(OruSceneRender& render, const CurrentHitRecord& held);
    bool clickEmpty(bool withModifier);
    bool clickObject(OruSceneRender& render, const CurrentHitRecord& clicked, bool withModifier);

    boost::shared_ptr<IOruSceneController> hostController;
    CurrentHitRecord downHit;
    CurrentHitRecord hoverHit;
};
