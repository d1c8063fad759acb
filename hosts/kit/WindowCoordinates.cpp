#include "hosts/kit/WindowCoordinates.h"

#include <algorithm>
#include <cmath>

namespace hostkit {

QSize WindowCoordinates::devicePixels(const QSize& logical, qreal ratio)
{
    return {std::max(1, qRound(logical.width() * ratio)), std::max(1, qRound(logical.height() * ratio))};
}

QPoint WindowCoordinates::pixelAt(const QPointF& position, qreal ratio, const QSize& framebuffer)
{
    const int x = static_cast<int>(std::floor(position.x() * ratio));
    const int y = static_cast<int>(std::floor(position.y() * ratio));
    return {x, framebuffer.height() - 1 - y};
}

} // namespace hostkit
