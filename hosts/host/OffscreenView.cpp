#include "hosts/host/OffscreenView.h"

#include "contracts/ogl/OruOglFunctions.h"
#include "hosts/host/GlPlatform.h"

#include <QOpenGLContext>

#include <stdexcept>

namespace hostkit {

OffscreenView::OffscreenView(const QSize& pixels)
    : context_(std::make_unique<QOpenGLContext>())
    , size_(pixels)
{
    window_.setSurfaceType(QSurface::OpenGLSurface);
    window_.setFormat(GlPlatform::format());
    // The asked size is in pixels, that of a window in logical units.
    window_.resize((QSizeF(pixels) / window_.devicePixelRatio()).toSize());
    window_.create();
    context_->setFormat(window_.format());
    if (!context_->create() || !context_->makeCurrent(&window_)) {
        throw std::runtime_error("there is no OpenGL 2.1 on this display");
    }
}

OffscreenView::~OffscreenView()
{
    context_->doneCurrent();
}

void OffscreenView::makeCurrent()
{
    context_->makeCurrent(&window_);
}

QImage OffscreenView::grab() const
{
    QImage image;
    glReadPixels(0, 0, size_.width(), size_.height(), image);
    return image;
}

} // namespace hostkit
