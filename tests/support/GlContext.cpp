#include "tests/support/GlContext.h"
#include "tests/support/GlRecorder.h"

#include <QSurfaceFormat>

#define GL_GLEXT_PROTOTYPES
#include <GL/gl.h>

#include <stdexcept>
#include <vector>

namespace kelvartest {

namespace {

QSurfaceFormat compatibilityFormat()
{
    QSurfaceFormat format;
    format.setVersion(2, 1);
    format.setProfile(QSurfaceFormat::NoProfile);
    format.setDepthBufferSize(24);
    format.setStencilBufferSize(8);
    return format;
}

} // namespace

GlContext::GlContext(const QSize& size)
{
    window_.setSurfaceType(QSurface::OpenGLSurface);
    window_.setFormat(compatibilityFormat());
    window_.resize(size);
    window_.create();
    context_.setFormat(window_.requestedFormat());
    if (!context_.create()) {
        throw std::runtime_error("no OpenGL context to be had; run under Xvfb with Mesa");
    }
    makeCurrent();
    GlRecorder::instance().resetBalance();
}

GlContext::~GlContext()
{
    context_.doneCurrent();
}

void GlContext::makeCurrent()
{
    if (!context_.makeCurrent(&window_)) {
        throw std::runtime_error("the OpenGL context can't be made current");
    }
}

QImage GlContext::grab() const
{
    const int width = size().width();
    const int height = size().height();
    std::vector<unsigned char> pixels(static_cast<size_t>(width) * static_cast<size_t>(height) * 4);
    glPushClientAttrib(GL_CLIENT_PIXEL_STORE_BIT);
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glPixelStorei(GL_PACK_ROW_LENGTH, 0);
    glReadPixels(0, 0, width, height, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
    glPopClientAttrib();
    const QImage image(pixels.data(), width, height, width * 4, QImage::Format_RGBX8888);
    return image.mirrored().convertToFormat(QImage::Format_RGB888);
}

std::string GlContext::faults() const
{
    std::string text = GlRecorder::instance().imbalance();
    for (GLenum error = glGetError(); error != GL_NO_ERROR; error = glGetError()) {
        text += "GL error " + glName(error) + "; ";
    }
    return text;
}

} // namespace kelvartest
