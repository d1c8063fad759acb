#include "hosts/host/LiveView.h"

#include "hosts/host/GlPlatform.h"
#include "hosts/host/WindowCoordinates.h"
#include "hosts/host/internal/GlDrawable.h"

#include <QGuiApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QStyleHints>
#include <QWheelEvent>

#include <array>
#include <exception>
#include <iostream>

namespace hostkit {

namespace {

struct ButtonRow
{
    Qt::MouseButton qt;
    OruMouse::Button scene;
};

constexpr std::array<ButtonRow, 3> buttonRows = {{
    {Qt::LeftButton, OruMouse::ButtonPick},
    {Qt::RightButton, OruMouse::ButtonContext},
    {Qt::MiddleButton, OruMouse::ButtonView},
}};

struct ModifierRow
{
    Qt::KeyboardModifier qt;
    unsigned int bit;
};

constexpr std::array<ModifierRow, 4> modifierRows = {{
    {Qt::ControlModifier, 1},
    {Qt::ShiftModifier, 2},
    {Qt::AltModifier, 4},
    {Qt::MetaModifier, 8},
}};

unsigned int wordOf(Qt::KeyboardModifiers modifiers)
{
    unsigned int word = 0;
    for (const ModifierRow& row : modifierRows) {
        word |= modifiers.testFlag(row.qt) ? row.bit : 0;
    }
    return word;
}

QPointF positionOf(const QMouseEvent& event)
{
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
    return event.localPos();
#else
    return event.position();
#endif
}

} // namespace

LiveView::LiveView(const QString& fonts, const QString& images, const QString& user)
    : fonts_(fonts)
    , images_(images)
    , user_(user)
{
    setFormat(GlPlatform::format());
    moveTimer_.setSingleShot(true);
    connect(&moveTimer_, &QTimer::timeout, this, [this] { flushMove(); });
}

LiveView::~LiveView()
{
    makeCurrent();
    input_.reset();
    host_.reset();
    doneCurrent();
}

void LiveView::run(const std::function<bool(HostScene&)>& action)
{
    if (!host_) {
        return;
    }
    flushMove();
    makeCurrent();
    host_->setSize(framebuffer_);
    // The window may have gone to a screen with another ratio.
    input_->setDragThreshold(qRound(QGuiApplication::styleHints()->startDragDistance() * devicePixelRatio()));
    if (action(*host_)) {
        update();
    }
}

void LiveView::initializeGL()
{
    host_ = std::make_unique<HostScene>(fonts_, images_, user_);
    input_ = std::make_unique<InputFeed>(*host_);
    measure();
    if (ready_) {
        ready_(*host_);
    }
}

void LiveView::resizeGL(int, int)
{
    makeCurrent();
    measure();
}

void LiveView::paintGL()
{
    try {
        measure();
        host_->draw();
    } catch (const std::exception& error) {
        std::cerr << "draw: " << error.what() << std::endl;
    }
}

bool LiveView::event(QEvent* event)
{
    switch (event->type()) {
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
    return QOpenGLWindow::event(event);
}

void LiveView::mousePressEvent(QMouseEvent* event)
{
    feedButton(event, &InputFeed::press);
}

void LiveView::mouseReleaseEvent(QMouseEvent* event)
{
    feedButton(event, &InputFeed::release);
}

void LiveView::mouseDoubleClickEvent(QMouseEvent* event)
{
    feedButton(event, &InputFeed::doubleClick);
}

void LiveView::mouseMoveEvent(QMouseEvent* event)
{
    for (const ButtonRow& row : buttonRows) {
        if (input_ && input_->held(row.scene) && !event->buttons().testFlag(row.qt)) {
            feed([this] { return input_->cancel(); }); // the release went elsewhere
        }
    }
    moveTimer_.start();
    move_ = Move{pixelOf(positionOf(*event)), wordOf(event->modifiers())};
}

void LiveView::wheelEvent(QWheelEvent* event)
{
    feed([&] {
        return input_->wheel(event->angleDelta().y(), wordOf(event->modifiers()), pixelOf(event->position()));
    });
}

void LiveView::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Q && event->modifiers() == Qt::ControlModifier) {
        close();
        return;
    }
    feed([&] { return input_->keyPress(event->key(), wordOf(event->modifiers())); });
}

void LiveView::keyReleaseEvent(QKeyEvent* event)
{
    feed([&] { return input_->keyRelease(event->key(), wordOf(event->modifiers())); });
}

void LiveView::focusInEvent(QFocusEvent*)
{
    feed([this] { return input_->focus(true); });
}

void LiveView::focusOutEvent(QFocusEvent*)
{
    feed([this] {
        const bool repaint = input_->cancel();
        return input_->focus(false) || repaint;
    });
}

void LiveView::hideEvent(QHideEvent*)
{
    feed([this] { return input_->cancel(); });
}

/// The road of every event: nothing is thrown into the event loop.
void LiveView::feed(const std::function<bool()>& action)
{
    try {
        run([&](HostScene&) { return action(); });
    } catch (const std::exception& error) {
        std::cerr << "event: " << error.what() << std::endl;
        update();
    }
}

void LiveView::feedButton(QMouseEvent* event, PointerAction action)
{
    for (const ButtonRow& row : buttonRows) {
        if (event->button() == row.qt) {
            feed([&] {
                return (*input_.*action)(row.scene, wordOf(event->modifiers()), pixelOf(positionOf(*event)));
            });
        }
    }
}

void LiveView::flushMove()
{
    if (const std::optional<Move> move = std::exchange(move_, std::nullopt)) {
        feed([&] { return input_->move(move->modifiers, move->pixel); });
    }
}

/// Asks for the size of the window in pixels; its context is current.
void LiveView::measure()
{
    framebuffer_ = GlDrawable::size();
    host_->setSize(framebuffer_);
}

QPoint LiveView::pixelOf(const QPointF& position) const
{
    return WindowCoordinates::pixelAt(position, devicePixelRatio(), framebuffer_);
}

} // namespace hostkit
