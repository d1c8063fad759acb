#pragma once

#include "Scene/core/OruScene.h"
#include "Scene/core/OruSceneEventContext.h"

#include <QImage>
#include <QOpenGLContext>
#include <QWindow>

#include <memory>

/// A window with a scene in it: the least that a host does.
///
/// It makes an OpenGL context, keeps an event context for the scene, paints when asked and hands on the mouse
/// and the keys. All positions that it takes are pixels, origin at the lower left.
class SceneWindow : public QWindow
{
public:
    /// To be called ahead of the QGuiApplication: a scene needs OpenGL 2.1, its pictures GLX.
    static void choosePlatform();

    SceneWindow();
    ~SceneWindow() override;

    /// The OpenGL context is current while the window's owner fills the scene.
    OruScene& scene() { return *scene_; }

    /// Shows the whole scene, turned as `orientation` says.
    void lookFrom(const Kelvar::Math::Matrix& orientation);

    /// The view as a picture of that size, of a window that may never have been shown. A null image: there
    /// are no framebuffer objects, or the size is beyond them.
    QImage picture(const QSize& pixels);

    /// Takes over what was changed in the tree, and repaints.
    void refresh();

    void press(OruMouse::Button button, Qt::KeyboardModifiers modifiers, const QPoint& pixel);
    void move(Qt::KeyboardModifiers modifiers, const QPoint& pixel);
    void release(OruMouse::Button button, Qt::KeyboardModifiers modifiers, const QPoint& pixel);

protected:
    bool event(QEvent* event) override;
    void exposeEvent(QExposeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    using Event = bool (OruSceneEventHandler::*)(OruSceneEventContext&);

    void send(Event operation);
    void paint();
    void readTree();
    void setSize(const QSize& pixels);
    void updateProjection();
    QPoint pixelAt(const QPointF& position) const;

    QOpenGLContext gl_;
    OruSceneEventContext context_;
    std::unique_ptr<OruScene> scene_;
    QPoint pressed_;
};
