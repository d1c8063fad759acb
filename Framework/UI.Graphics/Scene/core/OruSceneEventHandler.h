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
    virtual bool focusIn(OruSceneEventContext& ctx) = 0;
    virtual bool focusOut(OruSceneEventContext& ctx) = 0;
    virtual bool mouseEnter(OruSceneEventContext& ctx) = 0;
    virtual bool mouseLeave(OruSceneEventContext& ctx) = 0;
    virtual bool mouseMove(OruSceneEventContext& ctx) = 0;
    virtual bool mouseWheel(OruSceneEventContext& ctx) = 0;

    /// Opens an edit session that stays open until the matching mouseRelease.
    virtual bool mousePress(OruSceneEventContext& ctx) = 0;
    virtual bool mouseRelease(OruSceneEventContext& ctx) = 0;

    /// A press and a release at one place, as the host judges it; comes after the release.
    virtual bool mouseClick(OruSceneEventContext& ctx) = 0;
    virtual bool mouseDoubleClick(OruSceneEventContext& ctx) = 0;
    virtual bool keyPress(OruSceneEventContext& ctx) = 0;
    virtual bool keyRelease(OruSceneEventContext& ctx) = 0;

protected:
    ~OruSceneEventHandler() = default;
};
