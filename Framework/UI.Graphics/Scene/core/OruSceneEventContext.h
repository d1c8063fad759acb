#pragma once

#include "Scene/kelvar_scene_api.h"
#include "contracts/core/OruMouse.h"
#include "contracts/math/BoundingBox.h"
#include "contracts/math/Matrix.h"
#include "contracts/math/Vector3.h"
#include "contracts/ogl/OruOglViewport.h"

#include <QString>

/// What passes between a host and its scene from event to event and from paint to paint.
///
/// The host owns one for each view, fills in what it knows before each call and finds results in it
/// afterwards. All pixel positions are OpenGL window coordinates: device pixels, origin at the lower left,
/// y upwards. A plain value: copying carries all fields.
class KELVAR_SCENE_API OruSceneEventContext
{
public:
    OruSceneEventContext();
    OruSceneEventContext(const OruSceneEventContext& other);
    OruSceneEventContext& operator=(const OruSceneEventContext& other);
    virtual ~OruSceneEventContext();

    /// The view's rectangle in pixels. Written by the host.
    OruOglViewport viewport;

    /// The pointer, its buttons and its wheel as of this event. Fed by the host.
    OruMouse mouse;

    /// Key code of a key event, written by the host ahead of keyPress: letters as upper-case ASCII.
    int key = 0;

    /// The keyboard's modifiers as one word of bits; 0: none, 2: just the modifier of the reverse views.
    unsigned int keyModifiers = 0;

    /// World to view. A draw overwrites it with the stored viewpoint; navigation changes it in place.
    Kelvar::Math::Matrix modelView;

    /// View to clip space, for un-projecting the pointer. Kept current by the host, never by the scene.
    Kelvar::Math::Matrix projection;

    /// Name of the viewpoint that stores the view. Empty: a draw takes `modelView` as it stands.
    QString viewpointName;

    /// Fixed point of rotation and zoom, in world units. A draw sets it to the center of `bounds`.
    Kelvar::Math::Vector3 center;

    /// The rubber band: x, y where the press was, width and height signed towards the pointer. Pixels.
    OruOglViewport boxZoom;

    /// The scene's up direction, for the isometric view.
    Kelvar::Math::Vector3 upAxis;

    /// Bounds of all that is visible, in world units. Rewritten by every draw.
    Kelvar::Math::BoundingBox bounds;

    /// A box of the host's that a fit shows in place of `bounds`; undefined: use `bounds`.
    Kelvar::Math::BoundingBox zoomBounds;

    /// Share of the view that a fit fills; 1 touches the border.
    float fitFactor = 0.9f;

    /// Text to show at the pointer; empty: none.
    QString tooltip;

    /// True: a draw brings `bounds`, `center` and `modelView` up to date and paints nothing.
    bool noDraw = false;
};
