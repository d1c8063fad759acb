#pragma once

#include "Scene/kelvar_scene_api.h"
#include "Scene/navigation/OruPropertyAdaptor.h"
#include "contracts/core/OruProperties.h"
#include "contracts/math/Matrix.h"

#include <QString>

class OruSceneEventContext;

/// Turns mouse input into changes of a view matrix: zoom, pan, rotate, box zoom and the standard views.
///
/// Each operation reads the pointer, the viewport and the matrices of the event context and changes the
/// matrix that it is handed, which may be the context's own `modelView`. True: the matrix was assigned.
/// False: it was not touched. What would lose the view is never assigned: a result that is not finite, and
/// one whose scale has become too small for a normal float. The object holds no state but its three
/// settings, and those are read anew at each call.
///
/// Pixels are OpenGL window coordinates, angles degrees, rotations right-handed.
class KELVAR_SCENE_API OruSceneZpr : public OruProperties
{
public:
    /// The standard views. ViewX, ViewY and ViewZ look at the scene from the positive end of that axis, the
    /// reverse ones from its negative end. The numbers are fixed; any other one is taken as ViewZ.
    enum Position : int
    {
        ViewX = 0,
        ViewXReverse = 1,
        ViewY = 2,
        ViewYReverse = 3,
        ViewZ = 4,
        ViewZReverse = 5,
        ViewIsometric = 6,
        /// Keeps the orientation and fits the scene into the view.
        ViewFit = 7
    };

    static const QString typeString;

    explicit OruSceneZpr(OruModifiedGroup& group);
    OruSceneZpr(const OruSceneZpr& other);
    OruSceneZpr& operator=(const OruSceneZpr& other);
    ~OruSceneZpr() override;

    /// Moves the world with the pointer: the point under it stays under it. False: the pointer did not move.
    bool pan(const OruSceneEventContext& ctx, Kelvar::Math::Matrix& view) const;

    /// Turns about the context's `center`, about the axis in the screen plane at right angles to the drag. A
    /// drag over the viewport's width plus one pixel is half a turn. False: the pointer did not move.
    bool rotate(const OruSceneEventContext& ctx, Kelvar::Math::Matrix& view) const;

    /// Zooms by the vertical part of a drag. False: there was none, or the scale came out as 0.
    bool zoom(const OruSceneEventContext& ctx, Kelvar::Math::Matrix& view) const;

    /// Zooms by one wheel event, however far the wheel turned. False: it did not turn, or `zoomWheelFactor`
    /// is 0.
    bool zoomWheel(const OruSceneEventContext& ctx, Kelvar::Math::Matrix& view) const;

    /// Scales the picture by `factor` about the context's `center`. False: the factor is 0.
    bool zoomStep(const OruSceneEventContext& ctx, float factor, Kelvar::Math::Matrix& view) const;

    /// Ends a rubber band: a band dragged towards smaller y blows its content up to fill the view, at most
    /// tenfold; one dragged towards larger y shrinks the view into the band, at most to a tenth. False: the
    /// band is under 5 pixels in width or height. The band itself stays in the context.
    bool zoomBox(const OruSceneEventContext& ctx, Kelvar::Math::Matrix& view) const;

    /// Shows the context's `zoomBounds`, else its `bounds`, else a unit box, whole, centered and from a
    /// standard position. `view` is read for ViewFit. False: the box has no extent in the view plane, or the
    /// viewport has no area to fit it into.
    bool zoomTo(const OruSceneEventContext& ctx, Position position, Kelvar::Math::Matrix& view) const;

    /// Exponent per pixel of vertical drag.
    OruPropertyAdaptor<double> zoomMove;

    /// Scale step per wheel event.
    OruPropertyAdaptor<double> zoomWheelFactor;

    /// Swaps the direction of drag zoom and wheel zoom.
    OruPropertyAdaptor<bool> zoomInvert;

private:
    static bool assign(const Kelvar::Math::Matrix& result, Kelvar::Math::Matrix& view);
};
