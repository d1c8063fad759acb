#include "SceneWindow.h"

#include "contracts/ogl/OruOglFunctions.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QWheelEvent>

#include <cmath>
#include <stdexcept>

using Kelvar::UI::Toolkit::KeyModifier;
using Kelvar::UI::Toolkit::ModifierFirst;
using Kelvar::UI::Toolkit::ModifierNone;
using Kelvar::UI::Toolkit::ModifierSecond;

namespace {

/// A release this near to its press, in pixels, is a click.
const int clickDistance = 4;

OruMouse::Button buttonOf(const QMouseEvent& event)
{
    switch (event.button()) {
    case Qt::LeftButton:
        return OruMouse::ButtonPick;
    case Qt::RightButton:
        return OruMouse::ButtonContext;
    case Qt::MiddleButton:
        return OruMouse::ButtonView;
    default:
        return OruMouse::Button(0); // no button of a scene; harmless
    }
}

KeyModifier modifierOf(Qt::KeyboardModifiers modifiers)
{
    return modifiers & Qt::ControlModifier ? ModifierFirst
           : modifiers & Qt::ShiftModifier ? ModifierSecond
                                           : ModifierNone;
}

/// The keyboard's modifiers as one word: 1 for the first modifier, 2 for the second.
unsigned int wordOf(Qt::KeyboardModifiers modifiers)
{
    return (modifiers & Qt::ControlModifier ? 1u : 0u) | (modifiers & Qt::ShiftModifier ? 2u : 0u);
}

} // namespace

void SceneWindow::choosePlatform()
{
    qputenv("QT_QPA_PLATFORM", "xcb");
    qputenv("QT_XCB_GL_INTEGRATION", "xcb_glx");
    QSurfaceFormat format;
    format.setVersion(2, 1);
    format.setProfile(QSurfaceFormat::CompatibilityProfile);
    format.setDepthBufferSize(24);
    format.setStencilBufferSize(8);
    QSurfaceFormat::setDefaultFormat(format);
}

SceneWindow::SceneWindow()
{
    setSurfaceType(QSurface::OpenGLSurface);
    resize(960, 720);
    create();
    if (!gl_.create() || !gl_.makeCurrent(this)) {
        throw std::runtime_error("there is no OpenGL 2.1 on this display");
    }
    // Fonts come from the system, images from where the package has put them.
    scene_ = std::make_unique<OruScene>(QString(), QStringLiteral(IMAGE_DIR), QString());
    setSize(size() * devicePixelRatio());
}

SceneWindow::~SceneWindow()
{
    gl_.makeCurrent(this);
    scene_.reset();
}

void SceneWindow::lookFrom(const Kelvar::Math::Matrix& orientation)
{
    gl_.makeCurrent(this);
    readTree();
    context_.modelView = orientation;
    scene_->zpr.zoomTo(context_, OruSceneZpr::ViewFit, context_.modelView);
    scene_->setViewpoint(context_.viewpointName, context_.modelView);
    refresh();
}

QImage SceneWindow::picture(const QSize& pixels)
{
    gl_.makeCurrent(this);
    setSize(pixels);
    QImage image;
    scene_->drawGl(context_, image);
    return image;
}

void SceneWindow::refresh()
{
    gl_.makeCurrent(this);
    readTree();
    requestUpdate();
}

/// A draw that paints nothing brings the context's view and bounds up to date.
void SceneWindow::readTree()
{
    context_.noDraw = true;
    scene_->drawGl(context_);
    context_.noDraw = false;
    updateProjection();
}

void SceneWindow::paint()
{
    if (isExposed() && gl_.makeCurrent(this)) {
        setSize(size() * devicePixelRatio());
        scene_->drawGl(context_);
        updateProjection();
        gl_.swapBuffers(this);
    }
}

void SceneWindow::setSize(const QSize& pixels)
{
    context_.viewport = OruOglViewport(0, 0, pixels.width(), pixels.height());
}

/// The scene un-projects the pointer with this; keeping it current is the host's part.
void SceneWindow::updateProjection()
{
    context_.projection = glGetOrtho(context_.viewport, context_.bounds, context_.modelView);
}

/// Hands one event to the scene. Besides its answer, a rubber band or a tooltip that changed is a reason to
/// repaint.
void SceneWindow::send(Event operation)
{
    gl_.makeCurrent(this);
    updateProjection();
    const OruOglViewport band = context_.boxZoom;
    const QString tooltip = context_.tooltip;
    const bool changed = (scene_.get()->*operation)(context_);
    if (changed || band != context_.boxZoom || tooltip != context_.tooltip) {
        requestUpdate();
    }
}

void SceneWindow::press(OruMouse::Button button, Qt::KeyboardModifiers modifiers, const QPoint& pixel)
{
    pressed_ = pixel;
    context_.keyModifiers = wordOf(modifiers);
    context_.mouse.press(button, modifierOf(modifiers), pixel);
    send(&OruSceneEventHandler::mousePress);
}

void SceneWindow::move(Qt::KeyboardModifiers modifiers, const QPoint& pixel)
{
    context_.keyModifiers = wordOf(modifiers);
    context_.mouse.move(pixel, modifierOf(modifiers));
    send(&OruSceneEventHandler::mouseMove);
}

void SceneWindow::release(OruMouse::Button button, Qt::KeyboardModifiers modifiers, const QPoint& pixel)
{
    context_.keyModifiers = wordOf(modifiers);
    context_.mouse.release(button, modifierOf(modifiers), pixel);
    send(&OruSceneEventHandler::mouseRelease);
    if ((pixel - pressed_).manhattanLength() <= clickDistance) {
        send(&OruSceneEventHandler::mouseClick);
    }
}

bool SceneWindow::event(QEvent* event)
{
    if (event->type() == QEvent::UpdateRequest) {
        paint();
        return true;
    }
    return QWindow::event(event);
}

void SceneWindow::exposeEvent(QExposeEvent*)
{
    paint();
}

void SceneWindow::mousePressEvent(QMouseEvent* event)
{
    press(buttonOf(*event), event->modifiers(), pixelAt(event->pos()));
}

void SceneWindow::mouseMoveEvent(QMouseEvent* event)
{
    move(event->modifiers(), pixelAt(event->pos()));
}

void SceneWindow::mouseReleaseEvent(QMouseEvent* event)
{
    release(buttonOf(*event), event->modifiers(), pixelAt(event->pos()));
}

void SceneWindow::wheelEvent(QWheelEvent* event)
{
    context_.mouse.wheel(event->angleDelta().y(), modifierOf(event->modifiers()), pixelAt(event->position()));
    send(&OruSceneEventHandler::mouseWheel);
}

void SceneWindow::keyPressEvent(QKeyEvent* event)
{
    context_.key = event->key(); // letters are upper-case ASCII in Qt, too
    context_.keyModifiers = wordOf(event->modifiers());
    send(&OruSceneEventHandler::keyPress);
}

/// From the window system's logical units, y downwards, to device pixels, y upwards.
QPoint SceneWindow::pixelAt(const QPointF& position) const
{
    const QPointF device = position * devicePixelRatio();
    return {static_cast<int>(std::floor(device.x())),
            context_.viewport.height - 1 - static_cast<int>(std::floor(device.y()))};
}
