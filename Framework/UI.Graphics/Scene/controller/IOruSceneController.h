#pragma once

#include "Scene/kelvar_scene_api.h"
#include "contracts/vis/OruVisHitRecord.h"

#include <QPoint>
#include <QString>

class OruVisualization;

/// What a host wants to hear of the pointer's dealings with the objects of a scene.
///
/// Each operation comes after the one of the object's own event handler, with the same hit, whatever that one
/// answered. True: something changed that the host has to show. A visualization is borrowed for the length of
/// the call; null: nothing was hit, or the object's handler, which stands for its life, is gone. An object
/// that its own handler has destroyed counts as alive until that handler's call is over.
class KELVAR_SCENE_API IOruSceneController
{
public:
    /// The pointer rests on an object. `tooltip` is what will be shown at the pointer; the host may change
    /// it.
    virtual bool OnHoverEnter(const OruVisHitRecord& hit, const OruVisualization* visualization,
                              QString& tooltip) = 0;

    /// The pointer moves on, to the same object or another; comes ahead of the OnHoverEnter.
    virtual bool OnHoverLeave(const OruVisHitRecord& hit, const OruVisualization* visualization,
                              QString& tooltip) = 0;

    /// The pointer has moved by `delta` pixels while it holds the object.
    virtual bool OnDrag(const OruVisHitRecord& hit, const OruVisualization* visualization, QPoint delta) = 0;

    /// The object was let go.
    virtual bool OnRelease(const OruVisHitRecord& hit, const OruVisualization* visualization) = 0;

    /// The object was let go over another one. Its release follows. `targetVisualization` is what lay there
    /// at the hit test, dead or alive: a host whose handlers destroy targets compares it and reads nothing.
    virtual void OnDrop(const OruVisHitRecord& hit, const OruVisHitRecord& target,
                        const OruVisualization* sourceVisualization,
                        const OruVisualization* targetVisualization) = 0;

    /// A click on an object, or, with a default hit and null, on none. `withModifier`: the first modifier was
    /// held, and no other.
    virtual bool OnClick(const OruVisHitRecord& hit, const OruVisualization* visualization,
                         bool withModifier) = 0;

    virtual ~IOruSceneController();
};
