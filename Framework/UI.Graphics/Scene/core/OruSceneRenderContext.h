#pragma once

#include "Scene/kelvar_scene_api.h"
#include "contracts/math/Matrix.h"
#include "contracts/math/Vector3.h"
#include "contracts/ogl/OruOglViewport.h"

#include <QPoint>
#include <QString>

class OruSceneEventContext;

/// The snapshot of an event context that the passes of one frame read.
///
/// It lives for one draw, update or pick and does not see later changes of the event context. Frames and
/// units are those of OruSceneEventContext.
class KELVAR_SCENE_API OruSceneRenderContext
{
public:
    /// Takes the fields over; the pointer's current position becomes the cursor and the view has the focus.
    OruSceneRenderContext(const OruSceneEventContext& event);

    /// Takes the same fields over and leaves `focused` as it is.
    OruSceneRenderContext& operator=(const OruSceneEventContext& event);

    OruSceneRenderContext(const OruSceneRenderContext& other);

    /// Copies every field, the tooltip too: the source stays whole.
    OruSceneRenderContext(OruSceneRenderContext&& other) noexcept;

    OruSceneRenderContext& operator=(const OruSceneRenderContext& other);

    /// Moves the tooltip and copies the other fields.
    OruSceneRenderContext& operator=(OruSceneRenderContext&& other) noexcept;

    ~OruSceneRenderContext();

    OruOglViewport viewport;
    QPoint cursor;
    Kelvar::Math::Vector3 center;
    Kelvar::Math::Matrix modelView;
    Kelvar::Math::Matrix projection;

    /// True: the frame round the view is solid. False: stippled.
    bool focused;

    QString tooltip;
    OruOglViewport boxZoom;
};
