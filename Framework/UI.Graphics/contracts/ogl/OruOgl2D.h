#pragma once

#include "contracts/ogl/OruOglFlatState.h"
#include "contracts/ogl/OruOglViewport.h"
#include "contracts/ogl/kelvar_ogl_api.h"

#include <memory>

/// Drawing in the pixels of a window, over a finished picture and in whatever state the host has set.
///
/// Between begin() and end() whole numbers address the window's pixels, y upwards, as the pointer does; the
/// viewport, which is the one set in OpenGL, says which of them can be seen. Nothing is drawn beyond it, nor
/// beyond the host's scissor. The map is that of gluOrtho2D, moved by the viewport's corner. It is on the
/// projection stack; the model view stack is current and holds the identity, so the caller may load the
/// identity there. The state is that of OruOglFlatState, except that polygons show as outlines (GL_LINE): a
/// quad is a rubber band, drawn in the current line width.
class KELVAR_OGL_API OruOgl2D
{
public:
    explicit OruOgl2D(const OruOglViewport& viewport);

    /// Ends what begin() began, so that an exception in between does no harm.
    ~OruOgl2D();
    OruOgl2D(const OruOgl2D&) = delete;
    OruOgl2D& operator=(const OruOgl2D&) = delete;

    /// Opens the drawing. Nothing happens if it is open.
    void begin() const;

    /// Puts matrices, matrix mode and state back as begin() found them. Nothing happens if it is not open.
    void end() const;

private:
    OruOglViewport viewport_;
    mutable std::unique_ptr<OruOglFlatState> state_;
};
