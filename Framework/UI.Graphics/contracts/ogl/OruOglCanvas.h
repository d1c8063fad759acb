#pragma once

#include "contracts/ogl/kelvar_ogl_api.h"

/// A picture off screen with colors, alpha and a stencil of 8 bits, to be drawn to and then used as a
/// texture.
///
/// It belongs to the OpenGL context that is current at its first resize(), which is current in all of its
/// calls and its end.
class KELVAR_OGL_API OruOglCanvas
{
public:
    OruOglCanvas() = default;
    ~OruOglCanvas();
    OruOglCanvas(const OruOglCanvas&) = delete;
    OruOglCanvas& operator=(const OruOglCanvas&) = delete;

    /// Gives it that size in pixels, if it has not got it; what was drawn is then gone. False: OpenGL has no
    /// framebuffer objects, or not of that size, and the canvas cannot be drawn to.
    bool resize(int width, int height);

    /// The texture with what was drawn, of the canvas's size; 0: there is none.
    unsigned int texture() const { return texture_; }

    /// While it lives, the canvas is what is drawn to, and the viewport covers it. Puts back what was before.
    class KELVAR_OGL_API Drawing
    {
    public:
        /// The canvas has a size, is borrowed and lives as long.
        explicit Drawing(const OruOglCanvas& canvas);
        ~Drawing();
        Drawing(const Drawing&) = delete;
        Drawing& operator=(const Drawing&) = delete;

    private:
        int frameBefore_ = 0;
    };

private:
    void release();

    int width_ = 0;
    int height_ = 0;
    unsigned int frame_ = 0;
    unsigned int texture_ = 0;
    unsigned int stencil_ = 0;
};
