#include "Scene/navigation/OruSceneZpr.h"

#include "Scene/core/OruSceneEventContext.h"
#include "contracts/core/OruModifiedGroup.h"
#include "contracts/core/OruNearestInt.h"
#include "contracts/core/OruPropertyKind.h"
#include "contracts/math/Vector3.h"
#include "contracts/ogl/OruOglViewport.h"

#include <QPoint>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

using Kelvar::Math::Matrix;
using Kelvar::Math::Vector3;

namespace {

/// The world point under a pixel, at the near end of the depth range.
Vector3 screenToWorld(const OruSceneEventContext& ctx, const QPoint& point)
{
    const Vector3 window(static_cast<float>(point.x()), static_cast<float>(point.y()), 0.0f);
    return window.unProject(ctx.modelView, ctx.projection, &ctx.viewport.x);
}

/// The limits of one box zoom, and the smallest band in pixels that counts as one.
const int smallestBand = 5;
const float largestBlowUp = 10.0f;
const float smallestShrink = 0.1f;

constexpr OruPropertyKind wheelFactors = OruPropertyKind::of<double>().from(0.0);

float ratio(int part, int whole)
{
    return std::fabs(static_cast<float>(part) / static_cast<float>(whole));
}

float blowUpScale(const OruOglViewport& view, const OruOglViewport& band)
{
    const float rx = ratio(view.width, band.width);
    const float ry = ratio(view.height, band.height);
    const float tighter = rx > ry ? ry : rx;
    return largestBlowUp > tighter ? tighter : largestBlowUp;
}

float shrinkScale(const OruOglViewport& view, const OruOglViewport& band)
{
    const float rx = ratio(band.width, view.width);
    const float ry = ratio(band.height, view.height);
    const float larger = ry > rx ? ry : rx;
    return larger > smallestShrink ? larger : smallestShrink;
}

/// False for a view that has shrunk below the normal range of float: its turn would be rounded away, and no
/// zoom would bring it back.
bool hasScale(const Matrix& view)
{
    float largest = 0.0f;
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < 3; ++column) {
            largest = std::max(largest, std::fabs(view(row, column)));
        }
    }
    return largest >= std::numeric_limits<float>::min();
}

} // namespace

const QString OruSceneZpr::typeString = QLatin1String("scene.zpr");

OruSceneZpr::OruSceneZpr(OruModifiedGroup& modifiedGroup)
    : OruProperties(modifiedGroup)
    , zoomMove(*this, QLatin1String("zoomMove"), 0.01, QString())
    , zoomWheelFactor(*this, QLatin1String("zoomWheelFactor"), 1.1, QString())
    , zoomInvert(*this, QLatin1String("zoomInvert"), false, QString())
{
    setType(typeString);
    zoomWheelFactor.setKind(wheelFactors);
}

OruSceneZpr::OruSceneZpr(const OruSceneZpr& other) = default;

OruSceneZpr& OruSceneZpr::operator=(const OruSceneZpr& other) = default;

OruSceneZpr::~OruSceneZpr() = default;

bool OruSceneZpr::pan(const OruSceneEventContext& ctx, Matrix& view) const
{
    const Vector3 moved = screenToWorld(ctx, ctx.mouse.curpos()) - screenToWorld(ctx, ctx.mouse.oldpos());
    // Written so that a not-a-number counts as no movement.
    if (!(moved.length() > 0.0f)) {
        return false;
    }
    return assign(Matrix::translate(moved) * view, view);
}

bool OruSceneZpr::rotate(const OruSceneEventContext& ctx, Matrix& view) const
{
    const QPoint delta = ctx.mouse.mousedelta();
    Vector3 axis(static_cast<float>(-std::int64_t(delta.y())), static_cast<float>(delta.x()), 0.0f);
    const double length = axis.length();
    const double angle = length / static_cast<double>(std::int64_t(ctx.viewport.width) + 1) * 180.0;
    if (angle == 0.0) {
        return false;
    }
    axis.mult3x3(view.inverse());
    return assign(Matrix::translate(-ctx.center) * Matrix::rotate(axis, static_cast<float>(angle)) *
                      Matrix::translate(ctx.center) * view,
                  view);
}

bool OruSceneZpr::zoom(const OruSceneEventContext& ctx, Matrix& view) const
{
    const int dy = ctx.mouse.mousedelta().y();
    if (dy == 0) {
        return false;
    }
    const double sign = zoomInvert.value() ? 1.0 : -1.0;
    const double factor = std::exp(static_cast<double>(dy) * zoomMove.value() * sign);
    return zoomStep(ctx, static_cast<float>(factor), view);
}

bool OruSceneZpr::zoomWheel(const OruSceneEventContext& ctx, Matrix& view) const
{
    const int delta = ctx.mouse.wheeldelta();
    if (delta == 0) {
        return false;
    }
    const bool forward = (delta > 0) != zoomInvert.value();
    const double wheelFactor = zoomWheelFactor.value();
    const double factor = forward ? 1.0 / wheelFactor : wheelFactor;
    return zoomStep(ctx, static_cast<float>(factor), view);
}

bool OruSceneZpr::zoomStep(const OruSceneEventContext& ctx, float factor, Matrix& view) const
{
    if (factor == 0.0f) {
        return false;
    }
    return assign(
        Matrix::translate(-ctx.center) * Matrix::scale(factor) * Matrix::translate(ctx.center) * view, view);
}

bool OruSceneZpr::zoomBox(const OruSceneEventContext& ctx, Matrix& view) const
{
    const OruOglViewport band = OruOglViewport::normalized(ctx.boxZoom);
    if (band.width < smallestBand || band.height < smallestBand) {
        return false;
    }
    const QPoint bandCenter(oru::nearestInt(std::int64_t(band.width / 2) + band.x),
                            oru::nearestInt(std::int64_t(band.height / 2) + band.y));
    const QPoint viewCenter(ctx.viewport.width / 2, ctx.viewport.height / 2);
    const Vector3 a = screenToWorld(ctx, bandCenter);
    const Vector3 b = screenToWorld(ctx, viewCenter);

    // The sign of the stored height is the direction of the drag; the normalized band has lost it.
    if (ctx.boxZoom.height < 0) {
        const float s = blowUpScale(ctx.viewport, band);
        return assign(Matrix::translate(-a) * Matrix::scale(s) * Matrix::translate(b) * view, view);
    }
    const float s = shrinkScale(ctx.viewport, band);
    return assign(Matrix::translate(-b) * Matrix::scale(s) * Matrix::translate(a) * view, view);
}

/// The one way in which a view is changed.
bool OruSceneZpr::assign(const Matrix& result, Matrix& view)
{
    if (!result.isFinite() || !hasScale(result)) {
        return false;
    }
    view = result;
    return true;
}
