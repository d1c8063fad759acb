#pragma once

#include "contracts/math/BoundingBox.h"
#include "contracts/math/Matrix.h"
#include "contracts/vis/OruVisViewVolume.h"
#include "contracts/vis/OruVisualization.h"
#include "contracts/vis/kelvar_vis_api.h"

#include <array>
#include <vector>

/// The pixels that a pick asks about, and the piece of the model that is seen through them.
///
/// A pick window of N pixels at pixel p covers the pixels p - (N - 1) / 2 to p - (N - 1) / 2 + N - 1 on each
/// axis, less those outside the viewport. The center of pixel i has the window coordinate i + 0.5; in the
/// coordinates of the 2D passes it lies at i minus the viewport's corner. An object is hit when it covers the
/// center of a pixel of the window.
class KELVAR_VIS_API OruVisPickVolume
{
public:
    /// Takes matrices, viewport and pick window of `context` as they are now. volume() and meets() reach
    /// `rim` pixels beyond the window, for what is drawn that much wider than it is.
    explicit OruVisPickVolume(const OruVisualization::SelectContext& context, double rim = 0.0);

    /// No pixel is asked about: the window's size is below 1, it lies outside the viewport, or the viewport
    /// is empty.
    bool empty() const { return width_ < 1 || height_ < 1; }

    /// The clipped window in window pixels: lower left pixel and size, all 0 when empty.
    int x() const { return x_; }
    int y() const { return y_; }
    int width() const { return width_; }
    int height() const { return height_; }

    /// The viewport that the window was clipped to.
    const OruOglViewport& viewport() const { return viewport_; }

    /// Takes a model point to window x and y in pixels and depth 0 near to 1 far; with a perspective
    /// projection the result wants its divide by w.
    const Kelvar::Math::Matrix& toWindow() const { return toWindow_; }

    /// False only if no pixel of the window can show anything of the box. True for an undefined box, unless
    /// the window is empty. Near and far planes are not looked at.
    bool meets(const Kelvar::Math::BoundingBox& box) const;

    /// A window depth that no point of the box is in front of: the depth of its nearest corner. Minus
    /// infinity for an undefined box and one that reaches behind the eye.
    double nearestDepth(const Kelvar::Math::BoundingBox& box) const;

    /// A half space of the window: a x + b y + c depth + d >= 0, with x and y in pixels and depth 0 near to 1
    /// far. What lies outside of it is cut away and not there for the pick.
    using Cut = std::array<double, 4>;
    void cutBy(const Cut& cut) { cuts_.push_back(cut); }
    bool isCut() const { return !cuts_.empty(); }

    /// Whether nothing has cut that point away.
    bool keeps(double x, double y, double depth) const;

    /// The depth at which the look through the middle of the window comes to what is not cut away: 0 where
    /// nothing lies before that.
    double entryDepth() const;

    /// The same pick without the cuts that the look runs into from what is kept: what lies behind them
    /// counts.
    OruVisPickVolume openBehind() const;

    /// Pixels from the center of the whole pick window, unclipped, to a point in window coordinates.
    double distanceFromCenter(double windowX, double windowY) const;

    /// A rectangle in the coordinates of the 2D passes, edges included, covers the center of a pixel of the
    /// window.
    bool meets2d(double left, double bottom, double right, double top) const;

    /// Pixels from the center of the pick window to the nearest point of a rectangle in the coordinates of
    /// the 2D passes.
    double distance2d(double left, double bottom, double right, double top) const;

    /// The volume that meets() tests against.
    const OruVisViewVolume& volume() const { return volume_; }

private:
    void setWindow(const OruVisualization::SelectContext& context);

    OruOglViewport viewport_;
    int x_ = 0;
    int y_ = 0;
    int width_ = 0;
    int height_ = 0;
    double centerX_ = 0.0;
    double centerY_ = 0.0;
    Kelvar::Math::Matrix toWindow_;
    OruVisViewVolume volume_;
    std::vector<Cut> cuts_;
};
