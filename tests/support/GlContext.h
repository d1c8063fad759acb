#pragma once

#include <QImage>
#include <QOpenGLContext>
#include <QWindow>

#include <string>

namespace kelvartest {

/// A real OpenGL 2.1 context with a default framebuffer of the asked size: a window that is created and never
/// shown. Current from construction on; the recorder's books are opened anew.
class GlContext
{
public:
    explicit GlContext(const QSize& size);
    ~GlContext();
    GlContext(const GlContext&) = delete;
    GlContext& operator=(const GlContext&) = delete;

    void makeCurrent();
    QSize size() const { return window_.size(); }

    /// The back buffer as it stands, upright. Leaves the GL state as it was.
    QImage grab() const;

    /// Empty when GL reports no error and all stacks are balanced; else what is wrong. Takes the errors off.
    std::string faults() const;

private:
    QWindow window_;
    QOpenGLContext context_;
};

} // namespace kelvartest
