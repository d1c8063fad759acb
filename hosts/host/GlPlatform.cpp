#include "hosts/host/GlPlatform.h"

#include "contracts/ogl/OruOglGl.h"

#include <QGuiApplication>
#include <QOffscreenSurface>
#include <QOpenGLContext>

#include <algorithm>
#include <iterator>
#include <memory>

// Behind Qt's headers: it defines names that they use.
#include <X11/Xlib.h>

namespace hostkit {

namespace {

/// Asks a context of its own; the one that is current stays.
bool rendererIsSoftware()
{
    QOpenGLContext* const current = QOpenGLContext::currentContext();
    QSurface* const surface = current ? current->surface() : nullptr;
    QOffscreenSurface probe;
    probe.setFormat(GlPlatform::format());
    probe.create();
    QOpenGLContext context;
    context.setFormat(probe.format());
    QByteArray renderer;
    if (context.create() && context.makeCurrent(&probe)) {
        renderer = reinterpret_cast<const char*>(glGetString(GL_RENDERER));
        context.doneCurrent();
    }
    if (current) {
        current->makeCurrent(surface);
    }
    const char* const software[] = {"llvmpipe", "softpipe", "swrast", "Software"};
    return renderer.isEmpty() || std::any_of(std::begin(software), std::end(software),
                                             [&](const char* name) { return renderer.contains(name); });
}

} // namespace

bool GlPlatform::displayAnswers()
{
    // Stays open: a server whose last client leaves may start anew, and drops whoever comes meanwhile.
    static std::unique_ptr<Display, int (*)(Display*)> kept(nullptr, XCloseDisplay);
    kept.reset(XOpenDisplay(nullptr));
    return kept != nullptr;
}

void GlPlatform::prepare()
{
    qputenv("QT_QPA_PLATFORM", "xcb");
    qputenv("QT_XCB_GL_INTEGRATION", "xcb_glx");
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
    QGuiApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
#endif
    QGuiApplication::setHighDpiScaleFactorRoundingPolicy(
        Qt::HighDpiScaleFactorRoundingPolicy::RoundPreferFloor);
    QSurfaceFormat::setDefaultFormat(format());
}

QSurfaceFormat GlPlatform::format()
{
    QSurfaceFormat format;
    format.setRenderableType(QSurfaceFormat::OpenGL);
    format.setVersion(2, 1);
    format.setProfile(QSurfaceFormat::CompatibilityProfile);
    format.setDepthBufferSize(24);
    format.setStencilBufferSize(8);
    format.setSwapBehavior(QSurfaceFormat::DoubleBuffer);
    return format;
}

int GlPlatform::fittingSamples()
{
    static const int samples = rendererIsSoftware() ? 0 : 4;
    return samples;
}

int GlPlatform::largestPicture()
{
    int renderbuffer = 0;
    int viewport[2] = {0, 0};
    glGetIntegerv(GL_MAX_RENDERBUFFER_SIZE, &renderbuffer);
    glGetIntegerv(GL_MAX_VIEWPORT_DIMS, viewport);
    return std::min({renderbuffer, viewport[0], viewport[1]});
}

} // namespace hostkit
