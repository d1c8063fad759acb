#pragma once

class OruSceneEventContext;

/// The twelve inputs of a scene.
///
/// The host calls them on the thread of its OpenGL context, with that context current, and hands in the one
/// event context that it keeps across events and paints. Each operation answers whether something changed
/// that the host has to show; the host repaints on true. False: nothing changed.
///
/// The interface has no data and is never deleted through.
class OruSceneEventHandler
{
public:
    /// Focus and pointer come and go: these four drop the tooltip, and write a view that the host has changed
    /// by itself (`modelView`) to the viewpoint `viewpointName`. True: either of them changed something.
    virtual bool focusIn(OruSceneEventContext& ctx) = 0;
    virtual bool focusOut(OruSceneEventContext& ctx) = 0;
    virtual bool mouseEnter(OruSceneEventContext& ctx) = 0;
    virtual bool mouseLeave(OruSceneEventContext& ctx) = 0;

    /// The pointer moved, with buttons or without. Held without a modifier, an object that takes the drag has
    /// it; else the first gesture of zoom, pan, rotate and box zoom whose button and modifier are held acts;
    /// else, without a modifier, the pointer hovers and `tooltip` may be filled. A gesture changes
    /// `modelView`, a rotation also sets `center` to that of `bounds`, and a box zoom only stretches
    /// `boxZoom`. A changed view goes to the viewpoint.
    virtual bool mouseMove(OruSceneEventContext& ctx) = 0;

    /// Zooms by one step and writes the view to the viewpoint. True: it was written.
    virtual bool mouseWheel(OruSceneEventContext& ctx) = 0;

    /// Drops a rubber band that was left. The plain pick button grabs what lies under the pointer, the plain
    /// context button hovers there. Opens an edit session that stays open until the matching mouseRelease.
    virtual bool mousePress(OruSceneEventContext& ctx) = 0;

    /// Lets a held object go. Unless that changed something, the end of a box zoom zooms into or out of
    /// `boxZoom`, clears it and writes the view. Closes the session of the press.
    virtual bool mouseRelease(OruSceneEventContext& ctx) = 0;

    /// A press and a release at one place, as the host judges it; comes after the release. The pick button,
    /// plain or with the first modifier, clicks what lies under the pointer; a label of the triad turns the
    /// view.
    virtual bool mouseClick(OruSceneEventContext& ctx) = 0;

    /// Means nothing to a scene; always false.
    virtual bool mouseDoubleClick(OruSceneEventContext& ctx) = 0;

    /// F fits the view, I, X, Y and Z turn it to a standard position, the last three with the modifier word 2
    /// to the reverse one. True: `modelView` was set, and written to the viewpoint.
    virtual bool keyPress(OruSceneEventContext& ctx) = 0;

    /// Means nothing to a scene; always false.
    virtual bool keyRelease(OruSceneEventContext& ctx) = 0;

protected:
    ~OruSceneEventHandler() = default;
};
