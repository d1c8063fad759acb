#pragma once

#include "hosts/host/HostScene.h"
#include "hosts/host/InputFeed.h"
#include "hosts/host/kelvar_host_api.h"

#include <QOpenGLWindow>
#include <QTimer>

#include <functional>
#include <memory>
#include <optional>

namespace hostkit {

/// A window that shows a scene and feeds it all input; it paints on demand.
///
/// Left button: pick, middle: view, right: context; Ctrl is the first modifier, Shift the second. A repaint
/// happens at most once per turn of the event loop, and moves that queue up meanwhile become one. It draws
/// into the window's own framebuffer, never into one in between, and each swap follows a draw. Ctrl+Q closes
/// it.
///
/// What a visualization, handler or editor throws is told on stderr, and the window goes on.
class KELVAR_HOST_API LiveView : public QOpenGLWindow
{
public:
    /// The search places of OruResource: fonts, images, the user's own files. The scene exists from the
    /// window's first showing on.
    LiveView(const QString& fonts, const QString& images, const QString& user);
    ~LiveView() override;

    /// Called once, when the scene has been made and may be filled, its OpenGL context current.
    void setReadyListener(const std::function<void(HostScene&)>& listener) { ready_ = listener; }

    /// Hears of every event from now on; to be set when the scene exists.
    void setInputListener(const InputFeed::Listener& listener) { input_->setListener(listener); }

    /// What feeds the scene; null before the scene exists. Not owned by the caller.
    InputFeed* input() { return input_.get(); }

    /// Does something to the scene with its context current and repaints if the answer is true; what it
    /// throws passes through. Nothing happens before the scene exists.
    void run(const std::function<bool(HostScene&)>& action);

protected:
    void initializeGL() override;
    void resizeGL(int width, int height) override;
    void paintGL() override;
    bool event(QEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    using PointerAction = bool (InputFeed::*)(OruMouse::Button, unsigned int, const QPoint&);

    /// A move that has not been fed yet.
    struct Move
    {
        QPoint pixel;
        unsigned int modifiers;
    };

    void feed(const std::function<bool()>& action);
    void feedButton(QMouseEvent* event, PointerAction action);
    void flushMove();
    void measure();
    QPoint pixelOf(const QPointF& position) const;

    QString fonts_;
    QString images_;
    QString user_;
    std::function<void(HostScene&)> ready_;
    std::unique_ptr<HostScene> host_;
    std::unique_ptr<InputFeed> input_;
    QSize framebuffer_;
    std::optional<Move> move_;
    /// Runs out when the queue of events is empty; then the move is fed.
    QTimer moveTimer_;
};

} // namespace hostkit
