#pragma once

#include "hosts/host/kelvar_host_api.h"

#include <QImage>
#include <QWindow>

#include <memory>

class QOpenGLContext;

namespace hostkit {

/// A window that is created and never shown: a real framebuffer and an OpenGL context for programs that only
/// make pictures. Needs a QGuiApplication that GlPlatform has prepared.
class KELVAR_HOST_API OffscreenView
{
public:
    /// A framebuffer of that size in pixels, its context current. Throws std::runtime_error where there is no
    /// OpenGL.
    explicit OffscreenView(const QSize& pixels);
    ~OffscreenView();
    OffscreenView(const OffscreenView&) = delete;
    OffscreenView& operator=(const OffscreenView&) = delete;

    void makeCurrent();

    /// What was drawn last, upright.
    QImage grab() const;

private:
    QWindow window_;
    std::unique_ptr<QOpenGLContext> context_;
    QSize size_;
};

} // namespace hostkit
