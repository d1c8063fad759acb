#pragma once

#include "hosts/mesh/internal/PickQuery.h"

#include <array>
#include <optional>
#include <utility>

namespace hostkit {

/// A pick of what is drawn some pixels wide about a point or a line: what OpenGL clips by the middle alone.
class WindowQuery : public PickQuery
{
protected:
    WindowQuery(const OruVisPickVolume& volume, int pixels);

    /// Pixels of the window in one direction: from `first` up to but without `end`.
    struct Span
    {
        int first, end;
    };

    /// What of first up to `end` are pixels of a window of `count`.
    static Span clipped(double first, double end, int count);

    /// In the viewport and between near and far plane.
    bool inView(const Corner& point) const;

    /// The part of a segment that is in view; nothing: none.
    std::optional<std::pair<Corner, Corner>> inView(const Corner& from, const Corner& to) const;

private:
    /// How far inside the six borders, each times a positive number.
    std::array<double, 6> depthsInView(const Corner& point) const;

    /// The viewport's borders, in pixels from the center of the window's first pixel.
    double left_, bottom_, right_, top_;
};

} // namespace hostkit
