#pragma once

#include "contracts/math/DoubleMatrix.h"
#include "contracts/ogl/OruOglViewport.h"
#include "hosts/mesh/Point.h"

namespace hostkit {

/// Between a frame and the pixels of a window, in double: x and y in window coordinates, in which a pixel's
/// center lies at half, and the depth, 0 near to 1 far.
class WindowMap
{
public:
    /// `toClip` takes the frame to clip space.
    WindowMap(const Kelvar::Math::DoubleMatrix& toClip, const OruOglViewport& viewport)
        : toClip_(toClip)
        , viewport_(viewport)
    {}

    Point windowOf(const Point& place) const
    {
        double clip[4];
        toClip_.transform(place.data(), clip);
        return {viewport_.x + (clip[0] / clip[3] + 1.0) / 2.0 * viewport_.width,
                viewport_.y + (clip[1] / clip[3] + 1.0) / 2.0 * viewport_.height,
                (clip[2] / clip[3] + 1.0) / 2.0};
    }

    /// The way back; the origin where there is none.
    Point placeOf(const Point& window) const
    {
        const auto back = toClip_.inverse();
        if (!back || viewport_.empty()) {
            return {};
        }
        const double clip[] = {(window[0] - viewport_.x) / viewport_.width * 2.0 - 1.0,
                               (window[1] - viewport_.y) / viewport_.height * 2.0 - 1.0,
                               window[2] * 2.0 - 1.0};
        double place[4];
        back->transform(clip, place);
        return {place[0] / place[3], place[1] / place[3], place[2] / place[3]};
    }

private:
    Kelvar::Math::DoubleMatrix toClip_;
    OruOglViewport viewport_;
};

} // namespace hostkit
