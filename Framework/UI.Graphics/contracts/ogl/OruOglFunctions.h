#pragma once

#include "contracts/math/BoundingBox.h"
#include "contracts/math/Matrix.h"
#include "contracts/ogl/OruOglViewport.h"
#include "contracts/ogl/kelvar_ogl_api.h"

class QColor;
class QImage;

// OpenGL calls in the types of this framework, as overloads beside the functions of GL. All but glGetOrtho
// need a current context. None raises a GL error, whatever its arguments hold.

/// Sets the GL viewport. A negative width or height is taken as 0.
KELVAR_OGL_API void glViewport(const OruOglViewport& viewport);

/// The current GL viewport.
KELVAR_OGL_API OruOglViewport glGetViewport();

/// How far right of and above the pixel centers gluOrtho2D maps whole numbers, in pixels. A line from one
/// center to another has its ends where it depends on rounding whether OpenGL draws the last pixel; this step
/// decides it. It is too small to see: what must lie exactly on the pixels, such as an edge that fades out
/// over one of them, takes it off its coordinates.
constexpr double OruOglOffCenter = 1.0 / 64.0;

/// Multiplies the current matrix by the map from the viewport's own pixels to clip space: the CENTRES of its
/// pixels lie at the whole numbers 0 to width - 1 and 0 to height - 1 (but for OruOglOffCenter), so that x
/// spans -0.5 to width - 0.5 and y likewise; z spans -1 to 1. The viewport's x and y play no part. A side
/// below 1 is taken as 1.
KELVAR_OGL_API void gluOrtho2D(const OruOglViewport& viewport);

/// The current GL_MODELVIEW matrix.
KELVAR_OGL_API Kelvar::Math::Matrix glGetModelViewMatrix();

/// Loads the current matrix so that OpenGL maps each point p to p * matrix.
KELVAR_OGL_API void glLoadMatrix(const Kelvar::Math::Matrix& matrix);

/// An orthographic projection that shows `box`, in model coordinates, under the view `modelView`. Computes
/// only, no GL call.
///
/// x and y do not depend on the box: about the origin of eye space, 2 units high and 2 * width / height wide,
/// so that the zoom is the view matrix's affair alone. The near and far planes enclose the box as the view
/// places it (the eye looks along -z), with a margin of a twentieth of its depth at each end, and never come
/// closer than 0.001 to its middle. An undefined box, or one that is not finite under this view, counts as
/// the unit-sized range -1 to 1. An empty viewport counts as a square. The result is finite and can be
/// inverted.
KELVAR_OGL_API Kelvar::Math::Matrix glGetOrtho(const OruOglViewport& viewport,
                                               const Kelvar::Math::BoundingBox& box,
                                               const Kelvar::Math::Matrix& modelView);

/// Sets the color that glClear writes, alpha included. An invalid color is black.
KELVAR_OGL_API void glClearColor(const QColor& color);

/// Sets the current color, alpha included, in steps of 1/255.
KELVAR_OGL_API void glColor(const QColor& color);

/// Sets the current color to red, green and blue of `color` and to the alpha `alpha`, which counts in steps
/// of 1/255: 0 is transparent, 255 opaque. It is rounded and clamped to that range. Under a logic operation,
/// which acts on all four components, a small alpha leaves the alpha of the picture nearly as it was.
KELVAR_OGL_API void glColor(const QColor& color, float alpha);

/// Reads width x height pixels of the read buffer, from the window pixel (x, y) rightwards and upwards, into
/// `image`: of exactly that size, upright (its first line is the topmost), QImage::Format_RGB888, whatever it
/// was before. Pixel pack and pixel transfer state of the caller is neither used nor changed. A width or
/// height below 1, or more than memory holds, gives a null image. Pixels outside the framebuffer are black.
KELVAR_OGL_API void glReadPixels(int x, int y, int width, int height, QImage& image);
