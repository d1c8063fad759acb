#include "hosts/host/SceneWindow.h"

#include "contracts/core/OruPropertiesFile.h"
#include "hosts/host/GlPlatform.h"
#include "hosts/host/InputNames.h"
#include "hosts/host/WindowCoordinates.h"
#include "hosts/host/internal/GlDrawable.h"

#include <QElapsedTimer>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <QScopedValueRollback>
#include <QStyleHints>
#include <QWheelEvent>

#include <exception>
#include <iostream>
#include <stdexcept>
#include <utility>

namespace hostkit {

namespace {

template <typename PointerEvent>
QPointF positionOf(const PointerEvent& event)
{
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
    return event.localPos();
#else
    return event.position();
#endif
}

/// One step of a common wheel, in the eighths of a degree that Qt counts.
constexpr double eighthsPerStep = 120.0;

/// By the angle alone, which touchpads tell, too: what X11 tells as pixels is none.
double stepsOf(const QWheelEvent& event)
{
    return event.angleDelta().y() / eighthsPerStep;
}

/// Tells on stderr what was thrown; to be called where it is caught.
void tellThrown(const char* where)
{
    try {
        throw;
    } catch (const std::exception& error) {
        std::cerr << where << ": " << error.what() << std::endl;
    } catch (...) {
        std::cerr << where << ": something was thrown that says no more" << std::endl;
    }
}

} // namespace

SceneWindow::SceneWindow(const QString& fonts, const QString& images, const QString& user)
    : fonts_(fonts)
    , images_(images)
    , user_(user)
{
    setSurfaceType(QSurface::OpenGLSurface);
    moveTimer_.setSingleShot(true);
    connect(&moveTimer_, &QTimer::timeout, this, [this] { feedMove(); });
    makeScene();
}

SceneWindow::~SceneWindow()
{
    dropScene();
}

void SceneWindow::setContent(const Content& content)
{
    content_ = content;
    run([this](HostScene& host) {
        content_(host);
        host.changed();
        return true;
    });
}

void SceneWindow::setSamples(int samples)
{
    samples_ = samples;
    renew();
}

void SceneWindow::setInputListener(const InputFeed::Listener& listener)
{
    listener_ = listener;
    if (hasScene()) {
        input_->setListener(listener);
    }
}

void SceneWindow::renew()
{
    const QScopedValueRollback<bool> renewing(renewing_, true);
    cancelGesture();
    if (hasScene()) {
        tree_ = OruPropertiesFile::text(host_->scene());
    }
    const bool shown = isVisible();
    dropScene();
    destroy(); // the native window belongs to the format that it was made with
    std::exception_ptr failure;
    try {
        makeScene();
        restore();
    } catch (...) {
        failure = std::current_exception();
    }
    // Whoever holds on to the former scene has to hear of its end.
    Q_EMIT sceneRenewed();
    setVisible(shown);
    requestUpdate();
    if (failure) {
        std::rethrow_exception(failure);
    }
}

/// Puts content and tree into a scene that is new. What the content leaves out the tree keeps for the next
/// time.
void SceneWindow::restore()
{
    try {
        if (content_) {
            content_(*host_);
        }
    } catch (...) {
        tellThrown("content");
    }
    QString error;
    if (!OruPropertiesFile::load(host_->scene(), tree_, QStringLiteral("the former scene"), &error)) {
        std::cerr << error.toStdString() << std::endl;
    }
    tree_.clear();
    host_->changed();
}

/// The edit session of a button that is held has to end in the scene that it began in.
void SceneWindow::cancelGesture()
{
    if (!hasScene()) {
        return;
    }
    try {
        takeContext();
        input_->cancel();
    } catch (...) {
        tellThrown("event");
    }
}

/// The context, current, and a scene in it; all or nothing.
void SceneWindow::makeScene()
{
    QSurfaceFormat format = GlPlatform::format();
    format.setSamples(samples_.value_or(GlPlatform::fittingSamples()));
    format.setOption(QSurfaceFormat::ResetNotification);
    setFormat(format);
    create();
    auto context = std::make_unique<QOpenGLContext>();
    context->setFormat(format);
    if (!context->create() || !context->makeCurrent(this)) {
        throw std::runtime_error("there is no OpenGL 2.1 on this display");
    }
    hidden_ = std::make_unique<QOffscreenSurface>();
    hidden_->setFormat(context->format());
    hidden_->create();
    auto host = std::make_unique<HostScene>(fonts_, images_, user_);
    auto input = std::make_unique<InputFeed>(*host);
    input->setListener(listener_);
    context_ = std::move(context);
    host_ = std::move(host);
    input_ = std::move(input);
    measure();
}

void SceneWindow::dropScene()
{
    if (!hasScene()) {
        return;
    }
    takeContext();
    input_.reset();
    host_.reset();
    context_->doneCurrent();
    context_.reset();
}

/// Makes the context current, or none: a lost one cannot be, and OpenGL then drops the calls of the scene's
/// end, which another window's context would take for its own.
void SceneWindow::takeContext()
{
    if (!context_->makeCurrent(surface()) && QOpenGLContext::currentContext()) {
        QOpenGLContext::currentContext()->doneCurrent();
    }
}

/// A closed window has no surface of its own, and its scene lives on.
QSurface* SceneWindow::surface()
{
    return handle() ? static_cast<QSurface*>(this) : hidden_.get();
}

/// A context that got lost is replaced.
void SceneWindow::makeCurrent()
{
    if (hasScene() && !context_->makeCurrent(surface()) && !context_->isValid() && !renewing_) {
        renew();
    }
}

void SceneWindow::run(const std::function<bool(HostScene&)>& action)
{
    feedMove();
    makeCurrent();
    if (!hasScene()) {
        return;
    }
    host_->setSize(framebuffer_);
    // The window may have gone to a screen with another ratio.
    input_->setDragThreshold(qRound(QGuiApplication::styleHints()->startDragDistance() * devicePixelRatio()));
    if (action(*host_)) {
        requestUpdate();
    }
}

void SceneWindow::paint()
{
    if (!hasScene() || !isExposed()) {
        return;
    }
    try {
        makeCurrent();
        measure();
        if (!std::exchange(exposed_, true)) {
            host_->fitAgain();
        }
        QElapsedTimer clock;
        clock.start();
        host_->draw();
        frameMilliseconds_ = static_cast<double>(clock.nsecsElapsed()) / 1e6;
    } catch (...) {
        tellThrown("draw");
        return; // the picture that shows is whole, the one that was begun is not
    }
    context_->swapBuffers(this);
    Q_EMIT frameDrawn();
}

void SceneWindow::exposeEvent(QExposeEvent*)
{
    paint();
}

/// What lies under the pointer is another thing in a view of another size.
void SceneWindow::resizeEvent(QResizeEvent*)
{
    feed([this] {
        measure();
        return input_->hoverAgain();
    });
}

bool SceneWindow::event(QEvent* event)
{
    switch (event->type()) {
    case QEvent::UpdateRequest:
        paint();
        return true;
    case QEvent::NativeGesture:
        feedGesture(static_cast<QNativeGestureEvent*>(event));
        return true;
    case QEvent::Enter:
        feed([this] { return input_->enter(true); });
        break;
    case QEvent::Leave:
        feed([this] { return input_->enter(false); });
        break;
    case QEvent::UngrabMouse:
        feed([this] { return input_->cancel(); });
        break;
    default:
        break;
    }
    return QWindow::event(event);
}

void SceneWindow::mousePressEvent(QMouseEvent* event)
{
    feedButton(event, &InputFeed::press);
}

void SceneWindow::mouseReleaseEvent(QMouseEvent* event)
{
    feedButton(event, &InputFeed::release);
}

void SceneWindow::mouseDoubleClickEvent(QMouseEvent* event)
{
    feedButton(event, &InputFeed::doubleClick);
}

void SceneWindow::mouseMoveEvent(QMouseEvent* event)
{
    for (const InputNames::Button& row : InputNames::buttons) {
        if (hasScene() && input_->held(row.button) && !event->buttons().testFlag(row.qt)) {
            feed([this] { return input_->cancel(); }); // the release went elsewhere
        }
    }
    moveTimer_.start();
    move_ = Move{pixelOf(positionOf(*event)), InputNames::bitsOf(event->modifiers())};
}

void SceneWindow::wheelEvent(QWheelEvent* event)
{
    feed([&] {
        return input_->wheel(stepsOf(*event), InputNames::bitsOf(event->modifiers()),
                             pixelOf(event->position()));
    });
}

void SceneWindow::feedGesture(QNativeGestureEvent* event)
{
    const QPoint pixel = pixelOf(positionOf(*event));
    if (event->gestureType() == Qt::ZoomNativeGesture) {
        feed([&] { return input_->pinch(1.0 + event->value(), pixel); });
    } else if (event->gestureType() == Qt::RotateNativeGesture) {
        // Qt counts clockwise.
        feed([&] { return input_->turn(-event->value(), pixel); });
    }
}

void SceneWindow::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Escape && hasScene() && input_->gesture()) {
        feed([this] { return input_->abort(); });
        return;
    }
    feed([&] { return input_->keyPress(event->key(), InputNames::bitsOf(event->modifiers())); });
}

void SceneWindow::keyReleaseEvent(QKeyEvent* event)
{
    feed([&] { return input_->keyRelease(event->key(), InputNames::bitsOf(event->modifiers())); });
}

void SceneWindow::focusInEvent(QFocusEvent*)
{
    feed([this] { return input_->focus(true); });
}

void SceneWindow::focusOutEvent(QFocusEvent*)
{
    feed([this] {
        const bool repaint = input_->cancel();
        return input_->focus(false) || repaint;
    });
}

void SceneWindow::hideEvent(QHideEvent*)
{
    feed([this] { return input_->cancel(); });
}

bool SceneWindow::runAndTell(const std::function<bool(HostScene&)>& action)
{
    try {
        run(action);
        return hasScene();
    } catch (...) {
        tellThrown("event");
        requestUpdate();
        return false;
    }
}

bool SceneWindow::changeAndTell(const std::function<bool(HostScene&)>& action)
{
    return runAndTell([&](HostScene& host) {
        const bool repaint = action(host);
        return (input_ && input_->hoverAgain()) || repaint;
    });
}

/// The road of every event. While the scene is made anew the window goes and comes, and no scene is there to
/// hear of it.
void SceneWindow::feed(const std::function<bool()>& action)
{
    if (hasScene()) {
        runAndTell([&](HostScene&) { return action(); });
    }
}

void SceneWindow::feedButton(QMouseEvent* event, PointerAction action)
{
    for (const InputNames::Button& row : InputNames::buttons) {
        if (event->button() == row.qt) {
            feed([&] {
                return (*input_.*action)(row.button, InputNames::bitsOf(event->modifiers()),
                                         pixelOf(positionOf(*event)));
            });
        }
    }
}

void SceneWindow::feedMove()
{
    if (const std::optional<Move> move = std::exchange(move_, std::nullopt)) {
        feed([&] { return input_->move(move->modifiers, move->pixel); });
    }
}

/// Asks for the size of the window in pixels; its context is current.
void SceneWindow::measure()
{
    framebuffer_ = GlDrawable::size();
    host_->setSize(framebuffer_);
}

QPoint SceneWindow::pixelOf(const QPointF& position) const
{
    return WindowCoordinates::pixelAt(position, devicePixelRatio(), framebuffer_);
}

} // namespace hostkit
