#include "contracts/vis/OruVisPickVolume.h"

#include "contracts/math/DoubleMatrix.h"
#include "contracts/math/Vector3.h"
#include "contracts/ogl/OruOglViewport.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

namespace {

using Kelvar::Math::BoundingBox;
using Kelvar::Math::DoubleMatrix;
using Kelvar::Math::Matrix;
using Kelvar::Math::Vector3;

/// Pixels [begin, end) of one axis.
struct Span
{
    std::int64_t begin;
    std::int64_t end;
};

Span pickSpan(int pixel, int count)
{
    const std::int64_t begin = static_cast<std::int64_t>(pixel) - (static_cast<std::int64_t>(count) - 1) / 2;
    return {begin, begin + count};
}

Span clipped(const Span& span, int corner, int extent)
{
    const std::int64_t begin = corner;
    return {std::max(span.begin, begin), std::min(span.end, begin + extent)};
}

/// modelView * projection * viewport map, summed in double and rounded once.
Matrix windowMap(const Matrix& modelView, const Matrix& projection, const OruOglViewport& viewport)
{
    const double half[3] = {viewport.width / 2.0, viewport.height / 2.0, 0.5};
    const double middle[3] = {viewport.x + half[0], viewport.y + half[1], 0.5};
    const DoubleMatrix clipMap = DoubleMatrix(modelView) * DoubleMatrix(projection);
    Matrix map;
    for (int row = 0; row < 4; ++row) {
        const double* const clip = clipMap.m[row];
        for (int axis = 0; axis < 3; ++axis) {
            map(row, axis) = static_cast<float>(clip[axis] * half[axis] + clip[3] * middle[axis]);
        }
        map(row, 3) = static_cast<float>(clip[3]);
    }
    return map;
}

/// How far `value` lies outside of low to high.
double beyond(double value, double low, double high)
{
    return std::max({low - value, value - high, 0.0});
}

} // namespace

OruVisPickVolume::OruVisPickVolume(const OruVisualization::SelectContext& context, double rim)
    : viewport_(context.viewport)
    , toWindow_(windowMap(context.modelView, context.projection, context.viewport))
{
    setWindow(context);
    volume_ = empty() ? OruVisViewVolume::nothing()
                      : OruVisViewVolume::ofWindow(context.modelView, context.projection, viewport_, x_ - rim,
                                                   y_ - rim, width_ + 2.0 * rim, height_ + 2.0 * rim);
}

void OruVisPickVolume::setWindow(const OruVisualization::SelectContext& context)
{
    const Span wholeX = pickSpan(context.pickPoint.x(), context.pickSize.width());
    const Span wholeY = pickSpan(context.pickPoint.y(), context.pickSize.height());
    centerX_ = static_cast<double>(wholeX.begin + wholeX.end) / 2.0;
    centerY_ = static_cast<double>(wholeY.begin + wholeY.end) / 2.0;
    const Span spanX = clipped(wholeX, viewport_.x, viewport_.width);
    const Span spanY = clipped(wholeY, viewport_.y, viewport_.height);
    if (spanX.begin >= spanX.end || spanY.begin >= spanY.end) {
        return;
    }
    x_ = static_cast<int>(spanX.begin);
    y_ = static_cast<int>(spanY.begin);
    width_ = static_cast<int>(spanX.end - spanX.begin);
    height_ = static_cast<int>(spanY.end - spanY.begin);
}

bool OruVisPickVolume::meets(const BoundingBox& box) const
{
    return volume_.meets(box);
}

double OruVisPickVolume::nearestDepth(const BoundingBox& box) const
{
    const double unknown = -std::numeric_limits<double>::infinity();
    if (!box.defined()) {
        return unknown;
    }
    const DoubleMatrix toWindow(toWindow_);
    double nearest = std::numeric_limits<double>::infinity();
    for (int i = 0; i < 8; ++i) {
        const Vector3 corner = box.corner(i);
        const double point[3] = {corner.x, corner.y, corner.z};
        double image[4];
        toWindow.transform(point, image);
        if (!(image[3] > 0.0)) {
            return unknown;
        }
        nearest = std::min(nearest, image[2] / image[3]);
    }
    return nearest;
}

bool OruVisPickVolume::keeps(double x, double y, double depth) const
{
    return std::all_of(cuts_.begin(), cuts_.end(), [&](const Cut& cut) {
        return cut[0] * x + cut[1] * y + cut[2] * depth + cut[3] >= 0.0;
    });
}

/// A half space that the look leaves, or runs along, has no entry.
double OruVisPickVolume::entryDepth() const
{
    double entry = 0.0;
    for (const Cut& cut : cuts_) {
        if (cut[2] > 0.0) {
            entry = std::max(entry, -(cut[0] * centerX_ + cut[1] * centerY_ + cut[3]) / cut[2]);
        }
    }
    return entry;
}

OruVisPickVolume OruVisPickVolume::openBehind() const
{
    OruVisPickVolume open(*this);
    open.cuts_.erase(
        std::remove_if(open.cuts_.begin(), open.cuts_.end(), [](const Cut& cut) { return cut[2] < 0.0; }),
        open.cuts_.end());
    return open;
}

double OruVisPickVolume::distanceFromCenter(double windowX, double windowY) const
{
    return std::hypot(windowX - centerX_, windowY - centerY_);
}

bool OruVisPickVolume::meets2d(double left, double bottom, double right, double top) const
{
    if (empty()) {
        return false;
    }
    // Pixel centers lie at whole numbers here.
    const double firstX = static_cast<double>(x_) - viewport_.x;
    const double firstY = static_cast<double>(y_) - viewport_.y;
    return std::ceil(std::max(left, firstX)) <= std::min(right, firstX + width_ - 1) &&
           std::ceil(std::max(bottom, firstY)) <= std::min(top, firstY + height_ - 1);
}

double OruVisPickVolume::distance2d(double left, double bottom, double right, double top) const
{
    // The window coordinate of a pixel's center ends in one half.
    const double x = centerX_ - viewport_.x - 0.5;
    const double y = centerY_ - viewport_.y - 0.5;
    return std::hypot(beyond(x, left, right), beyond(y, bottom, top));
}
