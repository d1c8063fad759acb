// What OruScene does with input. Every decision about an event is made here; navigation, dispatch and the
// viewpoint do the work.

#include "Scene/core/OruScene.h"
#include "Scene/core/OruSceneEventContext.h"
#include "Scene/core/internal/OruSceneEditGuard.h"
#include "Scene/core/internal/OruSceneTrace.h"
#include "Scene/navigation/OruSceneMouseMappings.h"
#include "Scene/navigation/OruSceneZpr.h"
#include "contracts/core/KeyModifier.h"
#include "contracts/core/OruMouse.h"
#include "contracts/core/OruNearestInt.h"
#include "contracts/ogl/OruOglViewport.h"

#include <QPoint>

using Kelvar::UI::Toolkit::ModifierFirst;
using Kelvar::UI::Toolkit::ModifierNone;

namespace {

/// Values of the scene's mode: the gesture that the plain pick button means.
enum Mode : int
{
    ModeZoom = 1,
    ModePan = 2,
    ModeRotate = 3,
    ModeBoxZoom = 6
};

/// A key that turns the view. `anyModifiers` takes the key under every word of modifiers.
struct ViewKey
{
    int key;
    bool anyModifiers;
    unsigned int modifiers;
    OruSceneZpr::Position position;
};

const ViewKey viewKeys[] = {
    {'F', true, 0, OruSceneZpr::ViewFit}, {'I', true, 0, OruSceneZpr::ViewIsometric},
    {'X', false, 0, OruSceneZpr::ViewX},  {'X', false, 2, OruSceneZpr::ViewXReverse},
    {'Y', false, 0, OruSceneZpr::ViewY},  {'Y', false, 2, OruSceneZpr::ViewYReverse},
    {'Z', false, 0, OruSceneZpr::ViewZ},  {'Z', false, 2, OruSceneZpr::ViewZReverse},
};

const ViewKey* findViewKey(const OruSceneEventContext& ctx)
{
    for (const ViewKey& row : viewKeys) {
        if (row.key == ctx.key && (row.anyModifiers || row.modifiers == ctx.keyModifiers)) {
            return &row;
        }
    }
    return nullptr;
}

/// Without any modifier: neither one that the mouse event reports nor one of the keyboard.
bool isPlain(const OruSceneEventContext& ctx)
{
    return ctx.mouse.curmodifier() == ModifierNone && ctx.keyModifiers == 0;
}

bool isSingle(const OruSceneEventContext& ctx)
{
    return ctx.mouse.downcount() <= 1;
}

} // namespace

bool OruScene::gesture(const OruSceneEventContext& ctx, const OruSceneMouseMappings::Gesture& mapped,
                       int gestureMode) const
{
    const Kelvar::UI::Toolkit::KeyModifier modifier = mapped.modifier.value();
    const OruMouse::Button button = mapped.button.value();
    return ctx.mouse.isdown(button, modifier) ||
           (mode_ == gestureMode && ctx.mouse.isdown(OruMouse::ButtonPick, ModifierNone));
}

bool OruScene::zooming(const OruSceneEventContext& ctx) const
{
    return gesture(ctx, {mappings.zoomBut, mappings.zoomMod}, ModeZoom);
}

bool OruScene::panning(const OruSceneEventContext& ctx) const
{
    return gesture(ctx, {mappings.panBut, mappings.panMod}, ModePan);
}

bool OruScene::rotating(const OruSceneEventContext& ctx) const
{
    return gesture(ctx, {mappings.rotateBut, mappings.rotateMod}, ModeRotate);
}

bool OruScene::boxzooming(const OruSceneEventContext& ctx) const
{
    return gesture(ctx, {mappings.boxZoomBut, mappings.boxZoomMod}, ModeBoxZoom);
}

bool OruScene::focusIn(OruSceneEventContext& ctx)
{
    ORU_SCENE_TRACE();
    const OruSceneEditGuard guard(render, OruSceneEditGuard::OpensAndCloses, editDepth);
    return dropTooltip(ctx);
}

bool OruScene::focusOut(OruSceneEventContext& ctx)
{
    ORU_SCENE_TRACE();
    const OruSceneEditGuard guard(render, OruSceneEditGuard::OpensAndCloses, editDepth);
    return dropTooltip(ctx);
}

bool OruScene::mouseEnter(OruSceneEventContext& ctx)
{
    ORU_SCENE_TRACE();
    const OruSceneEditGuard guard(render, OruSceneEditGuard::OpensAndCloses, editDepth);
    return dropTooltip(ctx);
}

bool OruScene::mouseLeave(OruSceneEventContext& ctx)
{
    ORU_SCENE_TRACE();
    const OruSceneEditGuard guard(render, OruSceneEditGuard::OpensAndCloses, editDepth);
    return dropTooltip(ctx);
}

/// A tooltip that goes is a reason to repaint, and so is a view that the host has changed by itself.
bool OruScene::dropTooltip(OruSceneEventContext& ctx)
{
    const bool hadTooltip = !ctx.tooltip.isEmpty();
    ctx.tooltip = QLatin1String("");
    const bool viewChanged = setViewpoint(ctx.viewpointName, ctx.modelView);
    return viewChanged || hadTooltip;
}

bool OruScene::mouseMove(OruSceneEventContext& ctx)
{
    ORU_SCENE_TRACE();
    const OruSceneEditGuard guard(render, OruSceneEditGuard::OpensAndCloses, editDepth);
    const bool dispatches = isPlain(ctx) && isSingle(ctx);
    // An object that takes the drag wins over every gesture.
    if (dispatches && controller_.OnMouseDrag(render, ctx)) {
        return true;
    }
    const bool moved = runGesture(ctx, dispatches);
    const bool viewChanged = setViewpoint(ctx.viewpointName, ctx.modelView);
    return viewChanged || moved;
}

/// The first gesture that holds acts; without one the pointer hovers, if it may.
bool OruScene::runGesture(OruSceneEventContext& ctx, bool hovers)
{
    if (zooming(ctx)) {
        return zpr.zoom(ctx, ctx.modelView);
    }
    if (panning(ctx)) {
        return zpr.pan(ctx, ctx.modelView);
    }
    if (rotating(ctx)) {
        ctx.center = ctx.bounds.center();
        return zpr.rotate(ctx, ctx.modelView);
    }
    if (boxzooming(ctx)) {
        stretchBand(ctx);
        return true;
    }
    return hovers && controller_.OnMouseMove(render, ctx, ctx.tooltip);
}

void OruScene::stretchBand(OruSceneEventContext& ctx) const
{
    const OruMouse::Button button = mode_ == ModeBoxZoom ? OruMouse::ButtonPick : mappings.boxZoomBut.value();
    const QPoint down = ctx.mouse.downpos(button);
    const QPoint current = ctx.mouse.curpos();
    ctx.boxZoom.x = down.x();
    ctx.boxZoom.y = down.y();
    ctx.boxZoom.width = oru::wayBetween(down.x(), current.x());
    ctx.boxZoom.height = oru::wayBetween(down.y(), current.y());
}

bool OruScene::mouseWheel(OruSceneEventContext& ctx)
{
    ORU_SCENE_TRACE();
    const OruSceneEditGuard guard(render, OruSceneEditGuard::OpensAndCloses, editDepth);
    return zpr.zoomWheel(ctx, ctx.modelView) && setViewpoint(ctx.viewpointName, ctx.modelView);
}

bool OruScene::mousePress(OruSceneEventContext& ctx)
{
    ORU_SCENE_TRACE();
    const OruSceneEditGuard guard(render, OruSceneEditGuard::Opens, editDepth);
    ctx.boxZoom = OruOglViewport();
    if (ctx.mouse.isdown(OruMouse::ButtonPick, ModifierNone)) {
        return controller_.OnMouseDown(render, ctx);
    }
    if (ctx.mouse.isdown(OruMouse::ButtonContext, ModifierNone)) {
        // A context menu is about to come up: hover state and tooltip are to be those of this place.
        controller_.OnMouseMove(render, ctx, ctx.tooltip);
    }
    return false;
}

bool OruScene::mouseRelease(OruSceneEventContext& ctx)
{
    ORU_SCENE_TRACE();
    const OruSceneEditGuard guard(render, OruSceneEditGuard::Closes, editDepth);
    if (controller_.OnMouseUp(render, ctx)) {
        return true;
    }
    const bool boxIsDue = ctx.mouse.wasdown(mappings.boxZoomBut.value(), mappings.boxZoomMod.value()) ||
                          (mode_ == ModeBoxZoom && ctx.mouse.wasdown(OruMouse::ButtonPick, ModifierNone));
    if (!boxIsDue) {
        return false;
    }
    zpr.zoomBox(ctx, ctx.modelView);
    ctx.boxZoom = OruOglViewport();
    return setViewpoint(ctx.viewpointName, ctx.modelView);
}

bool OruScene::mouseClick(OruSceneEventContext& ctx)
{
    ORU_SCENE_TRACE();
    const OruSceneEditGuard guard(render, OruSceneEditGuard::OpensAndCloses, editDepth);
    const bool picks = ctx.mouse.wasdown(OruMouse::ButtonPick, ModifierNone) ||
                       ctx.mouse.wasdown(OruMouse::ButtonPick, ModifierFirst);
    return picks && controller_.OnMouseClick(*this, ctx);
}

bool OruScene::mouseDoubleClick(OruSceneEventContext&)
{
    ORU_SCENE_TRACE();
    return false;
}

bool OruScene::keyPress(OruSceneEventContext& ctx)
{
    ORU_SCENE_TRACE();
    const OruSceneEditGuard guard(render, OruSceneEditGuard::OpensAndCloses, editDepth);
    const ViewKey* const row = findViewKey(ctx);
    if (!row || !zpr.zoomTo(ctx, row->position, ctx.modelView)) {
        return false;
    }
    setViewpoint(ctx.viewpointName, ctx.modelView);
    return true;
}

bool OruScene::keyRelease(OruSceneEventContext&)
{
    ORU_SCENE_TRACE();
    return false;
}
