#pragma once

#include "contracts/math/Vector3.h"

#include <QColor>
#include <QPointF>
#include <QRect>

#include <vector>

/// Flat shapes with smooth edges for 2D passes, which have no multisampling to rely on.
///
/// Coordinates are pixels with pixel centers at whole numbers. Edges fade out over one pixel, so blending
/// must be on (OruOglFlatState::blend).
namespace oru {

/// Fills a convex polygon, given counter-clockwise.
void fillConvex(const std::vector<QPointF>& points, const QColor& color);

/// Fills the pixels of a rectangle (top() its lowest row) whose short sides are half circles.
void fillPill(const QRect& pixels, const QColor& color);

/// A piece of a cone seen from the front: from radius `startRadius` at `start` to `endRadius` at `end`, in
/// pixels, z towards the viewer. Shaded by a light from above right.
struct Frustum
{
    Kelvar::Math::Vector3 start;
    Kelvar::Math::Vector3 end;
    float startRadius;
    float endRadius;
};

void fillFrustum(const Frustum& frustum, const QColor& color);

} // namespace oru
