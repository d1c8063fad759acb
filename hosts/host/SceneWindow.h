#pragma once

#include "hosts/host/HostScene.h"
#include "hosts/host/InputFeed.h"
#include "hosts/host/kelvar_host_api.h"

#include <QByteArray>
#include <QTimer>
#include <QWindow>

#include <functional>
#include <memory>
#include <optional>

class QNativeGestureEvent;
class QOffscreenSurface;
class QOpenGLContext;

namespace hostkit {

/// A window that shows a scene and feeds it all input; it paints on demand.
///
///     SceneWindow window;
///     window.setContent([&](HostScene& host) { ModelParts(host.scene().render.visualizations).add(model);
///     }); window.show();
///
/// Left button: pick, middle: view, right: context; Ctrl is the first modifier, Shift the second. The wheel
/// enlarges forwards, about the pointer, and so do two fingers on a touchpad, which turn as well. Esc calls a
/// gesture off. A repaint happens at most once per turn of the event loop, and moves that queue up meanwhile
/// become one. The scene draws into the window's own framebuffer, never into one in between, and each swap
/// follows a draw: a pick, which clears the frame, never shows.
///
/// What a visualization, handler or editor throws is told on stderr, and the window goes on; where a lost
/// context cannot be replaced, without a scene: see hasScene(). GlPlatform has to be prepared before the
/// application object is made.
class KELVAR_HOST_API SceneWindow : public QWindow
{
    Q_OBJECT

public:
    /// Fills a scene; its OpenGL context is current.
    using Content = std::function<void(HostScene&)>;

    /// Makes the OpenGL context and the scene at once. The search places are those of HostScene. Throws
    /// std::runtime_error where there is no OpenGL 2.1.
    explicit SceneWindow(const QString& fonts = QString(), const QString& images = QString(),
                         const QString& user = QString());
    ~SceneWindow() override;

    /// Fills the scene, at once, and again whenever it had to be made anew because the OpenGL context got
    /// lost; the values of the tree are then put back behind it. What it throws passes through the first
    /// time, and is told on stderr later: the scene is then what it has made until there. What it shows by
    /// HostScene::showFrom fits the window when that appears, whatever its size then.
    void setContent(const Content& content);

    /// Samples of a pixel, 0 for none. Starts as 4 where the renderer is hardware and 0 where it is software.
    /// The scene is made anew for it, as renew() does.
    void setSamples(int samples);

    /// Makes context and scene anew and brings content and tree back: what happens when a context got lost. A
    /// gesture that is under way is cancelled first. References into the former scene end; sceneRenewed()
    /// tells who holds some. Throws std::runtime_error where there is no OpenGL 2.1 any more: the window is
    /// then without a scene, and the tree waits for the next renew().
    void renew();

    /// False: the scene's OpenGL context got lost, and there is no other. The window shows what it has and
    /// hears of nothing; run() does nothing.
    bool hasScene() const { return host_ != nullptr; }

    /// The scene, if there is one: whoever has not got it from run() asks hasScene() first. Use run() to
    /// change it: the context is then current, and the window repaints.
    HostScene& host() { return *host_; }

    /// What feeds the scene, if there is one. It belongs to this scene: another one has another.
    InputFeed& input() { return *input_; }

    /// Hears of every event from now on, also those of a scene that is made anew.
    void setInputListener(const InputFeed::Listener& listener);

    /// Does something to the scene with its context current and repaints if the answer is true; what it
    /// throws passes through.
    void run(const std::function<bool(HostScene&)>& action);

    /// As run(), for whoever is called by the event loop, which takes no exceptions: what the action throws
    /// is told on stderr, and the window repaints. False: it threw, or there is no scene.
    bool runAndTell(const std::function<bool(HostScene&)>& action);

    /// As runAndTell(), for what changes what is shown: then another thing may lie under a pointer that
    /// stands still. Also repaints where only its tooltip changes.
    bool changeAndTell(const std::function<bool(HostScene&)>& action);

    /// How long the last frame took to draw, in milliseconds, without the wait for the screen; 0: there was
    /// none.
    double frameMilliseconds() const { return frameMilliseconds_; }

Q_SIGNALS:
    /// A frame was drawn and shown: the moment to catch up with what changed in the tree.
    void frameDrawn();

    /// The scene is another one than before, or gone: hasScene() tells.
    void sceneRenewed();

protected:
    bool event(QEvent* event) override;
    void exposeEvent(QExposeEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
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

    void makeScene();
    void restore();
    void cancelGesture();
    void dropScene();
    void takeContext();
    QSurface* surface();
    void makeCurrent();
    void paint();
    void feed(const std::function<bool()>& action);
    void feedButton(QMouseEvent* event, PointerAction action);
    void feedGesture(QNativeGestureEvent* event);
    void feedMove();
    void measure();
    QPoint pixelOf(const QPointF& position) const;

    QString fonts_;
    QString images_;
    QString user_;
    /// Nothing: what the renderer is good for.
    std::optional<int> samples_;
    Content content_;
    InputFeed::Listener listener_;
    /// That of the former scene, while there is none.
    QByteArray tree_;
    bool renewing_ = false;
    /// Takes the window's place where it has no surface.
    std::unique_ptr<QOffscreenSurface> hidden_;
    std::unique_ptr<QOpenGLContext> context_;
    std::unique_ptr<HostScene> host_;
    std::unique_ptr<InputFeed> input_;
    QSize framebuffer_;
    /// Has been on the screen: the size that its content was fitted to is the real one from then on.
    bool exposed_ = false;
    double frameMilliseconds_ = 0.0;
    std::optional<Move> move_;
    /// Runs out when the queue of events is empty; then the move is fed.
    QTimer moveTimer_;
};

} // namespace hostkit
