#pragma once

#include "hosts/host/kelvar_host_api.h"

#include <QSurfaceFormat>

namespace hostkit {

/// How a program gets the kind of OpenGL that a scene needs: 2.1, compatibility, by GLX.
///
/// GLX because a window that is never shown has a real framebuffer there, and because the capture's GLEW
/// does not work under EGL.
struct KELVAR_HOST_API GlPlatform
{
    /// Whether the X server that DISPLAY names can be reached; without one a QGuiApplication ends the
    /// program.
    static bool displayAnswers();

    /// To be called before the QGuiApplication is made: chooses the X platform and GLX, makes format() the
    /// default, and lets screens have whole pixel ratios; QT_SCALE_FACTOR may still ask for another.
    static void prepare();

    /// 24 bits of depth, 8 of stencil, two buffers.
    static QSurfaceFormat format();

    /// Samples of a pixel that this machine draws without effort: 4 where the renderer is hardware, 0 where
    /// it is software. Needs the application object; asks OpenGL once.
    static int fittingSamples();

    /// The largest width or height of a picture; needs a current context.
    static int largestPicture();
};

} // namespace hostkit
