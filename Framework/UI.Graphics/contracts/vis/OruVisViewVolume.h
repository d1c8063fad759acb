#pragma once

#include "contracts/math/BoundingBox.h"
#include "contracts/math/Matrix.h"
#include "contracts/ogl/OruOglViewport.h"
#include "contracts/vis/kelvar_vis_api.h"

#include <array>

/// The piece of the model that a view, or a window of pixels in it, shows: up to six planes in model
/// coordinates.
///
/// It answers conservatively: what meets() refuses can't be seen; what it lets through may still lie beside a
/// corner. The plane of a clip condition is a sum of columns of modelView * projection (row vectors).
class KELVAR_VIS_API OruVisViewVolume
{
public:
    /// Everything: meets() is true for all boxes.
    OruVisViewVolume() = default;

    /// Nothing: meets() is false for all boxes, undefined ones too.
    static OruVisViewVolume nothing();

    /// What the viewport shows between near and far plane, with a rim of two pixels for lines and points.
    /// Nothing for an empty viewport.
    static OruVisViewVolume ofView(const Kelvar::Math::Matrix& modelView,
                                   const Kelvar::Math::Matrix& projection, const OruOglViewport& viewport);

    /// What the pixels x to x + width, y to y + height (window coordinates) of the viewport show, however
    /// near or far. The viewport is not empty.
    static OruVisViewVolume ofWindow(const Kelvar::Math::Matrix& modelView,
                                     const Kelvar::Math::Matrix& projection, const OruOglViewport& viewport,
                                     double x, double y, double width, double height);

    /// False only if nothing of the box lies inside. True for a box that is undefined or not finite, since
    /// nobody knows where it is.
    bool meets(const Kelvar::Math::BoundingBox& box) const;

    /// The same for the box from `low` to `high`, three floats each.
    bool meets(const float* low, const float* high) const;

private:
    /// Factors of x, y and z, and an offset; 0 or more on the inner side.
    using Plane = std::array<double, 4>;

    void add(const Plane& plane);

    std::array<Plane, 6> planes_{};
    int count_ = 0;
    bool nothing_ = false;
};
