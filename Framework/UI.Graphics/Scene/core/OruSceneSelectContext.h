#pragma once

#include "Scene/core/OruSceneRenderContext.h"

#include <QPoint>
#include <QSize>

/// A render context with the window of one pick, in pixels. The caller sets both fields after construction.
class OruSceneSelectContext : public OruSceneRenderContext
{
public:
    OruSceneSelectContext(const OruSceneEventContext& event)
        : OruSceneRenderContext(event)
    {}

    /// The pointer position that the pick is made at.
    QPoint pickPoint;

    /// Edge lengths of the pick window; invalid (-1 by -1) until set.
    QSize pickSize;
};
