#include "contracts/vis/OruVisViewVolume.h"

#include "contracts/math/DoubleMatrix.h"
#include "contracts/math/Vector3.h"

#include <cmath>

namespace {

using Kelvar::Math::DoubleMatrix;
using Kelvar::Math::Matrix;

/// From a model point to its clip coordinates. In double, so that a view that zooms in far still tells
/// neighbouring pixels apart.
DoubleMatrix clipMap(const Matrix& modelView, const Matrix& projection)
{
    return DoubleMatrix(modelView) * DoubleMatrix(projection);
}

/// The half space  sign * (clip coordinate `axis` - edge * w) >= 0.
std::array<double, 4> halfSpace(const DoubleMatrix& clip, int axis, double edge, double sign)
{
    std::array<double, 4> plane{};
    for (std::size_t i = 0; i < 4; ++i) {
        plane[i] = sign * (clip.m[i][axis] - edge * clip.m[i][3]);
    }
    return plane;
}

/// Slack of the near and far planes in normalized device coordinates, so that rounding cuts nothing off.
constexpr double depthSlack = 1e-3;

/// Half the rim, in pixels, that the wide lines and points at the edge of a view get.
constexpr double rim = 2.0;

} // namespace

void OruVisViewVolume::add(const Plane& plane)
{
    planes_[static_cast<std::size_t>(count_++)] = plane;
}

OruVisViewVolume OruVisViewVolume::nothing()
{
    OruVisViewVolume volume;
    volume.nothing_ = true;
    return volume;
}

OruVisViewVolume OruVisViewVolume::ofView(const Matrix& modelView, const Matrix& projection,
                                          const OruOglViewport& viewport)
{
    if (viewport.empty()) {
        return nothing();
    }
    OruVisViewVolume volume = ofWindow(modelView, projection, viewport, viewport.x - rim, viewport.y - rim,
                                       viewport.width + 2.0 * rim, viewport.height + 2.0 * rim);
    const DoubleMatrix clip = clipMap(modelView, projection);
    for (const double side : {-1.0, 1.0}) {
        volume.add(halfSpace(clip, 2, side * (1.0 + depthSlack), -side));
    }
    return volume;
}

OruVisViewVolume OruVisViewVolume::ofWindow(const Matrix& modelView, const Matrix& projection,
                                            const OruOglViewport& viewport, double x, double y, double width,
                                            double height)
{
    const DoubleMatrix clip = clipMap(modelView, projection);
    const double low[2] = {x - viewport.x, y - viewport.y};
    const double extent[2] = {width, height};
    const double pixels[2] = {static_cast<double>(viewport.width), static_cast<double>(viewport.height)};
    OruVisViewVolume volume;
    for (int axis = 0; axis < 2; ++axis) {
        const double from = 2.0 * low[axis] / pixels[axis] - 1.0;
        const double to = 2.0 * (low[axis] + extent[axis]) / pixels[axis] - 1.0;
        volume.add(halfSpace(clip, axis, from, 1.0));
        volume.add(halfSpace(clip, axis, to, -1.0));
    }
    return volume;
}

bool OruVisViewVolume::meets(const Kelvar::Math::BoundingBox& box) const
{
    if (nothing_) {
        return false;
    }
    if (!box.defined()) {
        return true;
    }
    const Kelvar::Math::Vector3 min = box.min();
    const Kelvar::Math::Vector3 max = box.max();
    const float low[3] = {min.x, min.y, min.z};
    const float high[3] = {max.x, max.y, max.z};
    return meets(low, high);
}

bool OruVisViewVolume::meets(const float* low, const float* high) const
{
    for (int i = 0; i < count_; ++i) {
        const Plane& plane = planes_[static_cast<std::size_t>(i)];
        // The corner that lies farthest on the inner side. A comparison with a number that is none fails, and
        // the box is let through.
        const double farthest = plane[0] * (plane[0] < 0.0 ? low[0] : high[0]) +
                                plane[1] * (plane[1] < 0.0 ? low[1] : high[1]) +
                                plane[2] * (plane[2] < 0.0 ? low[2] : high[2]) + plane[3];
        if (farthest < 0.0) {
            return false;
        }
    }
    return !nothing_;
}
