#include "hosts/host/WindowCoordinates.h"

#include <cmath>

namespace hostkit {

namespace {

/// Positions are whole pixels that were divided by the ratio; times the ratio they may fall short of them.
constexpr qreal roundingSlack = 1e-3;

} // namespace

QPoint WindowCoordinates::pixelAt(const QPointF& position, qreal ratio, const QSize& framebuffer)
{
    const int x = static_cast<int>(std::floor(position.x() * ratio + roundingSlack));
    const int y = static_cast<int>(std::floor(position.y() * ratio + roundingSlack));
    return {x, framebuffer.height() - 1 - y};
}

} // namespace hostkit
