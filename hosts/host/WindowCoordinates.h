#pragma once

#include "hosts/host/kelvar_host_api.h"

#include <QPoint>
#include <QPointF>
#include <QSize>

namespace hostkit {

/// The way between the coordinates of a window system and those of OpenGL; nothing else flips.
///
/// Window system: logical units, origin at the upper left, y downwards. OpenGL: device pixels, origin at the
/// lower left, y upwards; pixel 0 is the lowest. `ratio` is the number of device pixels a logical unit, any
/// number above 0, whole or not.
struct KELVAR_HOST_API WindowCoordinates
{
    /// The pixel under a position. Positions outside the window give pixels outside the framebuffer.
    static QPoint pixelAt(const QPointF& position, qreal ratio, const QSize& framebuffer);
};

} // namespace hostkit
