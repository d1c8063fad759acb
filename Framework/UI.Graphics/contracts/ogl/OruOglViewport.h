#pragma once

#include "contracts/ogl/kelvar_ogl_api.h"

#include <type_traits>

/// A rectangle of window pixels: origin at the lower left of the window, y upwards.
///
/// Four integers and nothing else: it may be copied as raw memory and read as an array of x, y, width,
/// height. Width and height may be negative, as in a rubber band that is drawn to the left or down; such a
/// rectangle counts as empty until it is normalized.
struct KELVAR_OGL_API OruOglViewport
{
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;

    /// The empty rectangle at the origin.
    constexpr OruOglViewport() = default;
    constexpr OruOglViewport(int left, int bottom, int w, int h)
        : x(left)
        , y(bottom)
        , width(w)
        , height(h)
    {}

    /// The same rectangle with non-negative width and height, x and y at its smallest corner.
    static OruOglViewport normalized(const OruOglViewport& viewport);

    /// True without a single pixel: a width or height below 1.
    constexpr bool empty() const { return width < 1 || height < 1; }

    /// The four integers as an array x, y, width, height.
    const int* data() const { return &x; }

    constexpr bool operator==(const OruOglViewport& other) const
    {
        return x == other.x && y == other.y && width == other.width && height == other.height;
    }
    constexpr bool operator!=(const OruOglViewport& other) const { return !(*this == other); }
};

static_assert(sizeof(OruOglViewport) == 4 * sizeof(int), "read as an array of four integers");
static_assert(std::is_standard_layout<OruOglViewport>::value, "read as an array of four integers");
static_assert(std::is_trivially_copyable<OruOglViewport>::value, "copied as raw memory");
