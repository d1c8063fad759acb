// A host by itself: its own window and OpenGL context, an object of its own, and each event handed to the
// scene by hand. `plain_host` opens the window; `plain_host --out FILE.png` draws one picture into a file and
// ends.

#include "Knot.h"

#include "Scene/core/OruScene.h"
#include "Scene/core/OruSceneEventContext.h"
#include "contracts/ogl/OruOglFunctions.h"
#include "contracts/vis/OruVisTriad.h"

#include <QGuiApplication>
#include <QImage>
#include <QKeyEvent>
#include <QOpenGLContext>
#include <QWheelEvent>
#include <QWindow>

#include <cmath>
#include <cstdlib>
#include <memory>

namespace {

class Window : public QWindow
{
public:
    Window()
    {
        setSurfaceType(QSurface::OpenGLSurface);
        resize(960, 720);
        create();
        if (!gl_.create() || !gl_.makeCurrent(this)) {
            qFatal("there is no OpenGL 2.1 on this display");
        }
        // Fonts come from the system, images from where the package has put them.
        scene_ = std::make_unique<OruScene>(QString(), QStringLiteral(IMAGE_DIR), QString());
        setSize(size() * devicePixelRatio());
        fill();
        lookFrom(Kelvar::Math::Matrix::rotate(Kelvar::Math::VectorX, -25.0f));
    }

    ~Window() override
    {
        gl_.makeCurrent(this);
        scene_.reset();
    }

    /// The view in that size, of a window that may never have been shown.
    QImage picture(const QSize& pixels)
    {
        gl_.makeCurrent(this);
        setSize(pixels);
        QImage image;
        scene_->drawGl(context_, image);
        return image;
    }

protected:
    bool event(QEvent* event) override
    {
        if (event->type() == QEvent::UpdateRequest) {
            paint();
            return true;
        }
        return QWindow::event(event);
    }

    void exposeEvent(QExposeEvent*) override { paint(); }

    void mousePressEvent(QMouseEvent* event) override
    {
        pressed_ = pixelAt(positionOf(*event));
        context_.mouse.press(buttonOf(*event), modifierOf(*event), pressed_);
        send(&OruSceneEventHandler::mousePress);
    }

    void mouseMoveEvent(QMouseEvent* event) override
    {
        context_.mouse.move(pixelAt(positionOf(*event)), modifierOf(*event));
        send(&OruSceneEventHandler::mouseMove);
    }

    /// A release near its press is a click.
    void mouseReleaseEvent(QMouseEvent* event) override
    {
        const QPoint pixel = pixelAt(positionOf(*event));
        context_.mouse.release(buttonOf(*event), modifierOf(*event), pixel);
        send(&OruSceneEventHandler::mouseRelease);
        if ((pixel - pressed_).manhattanLength() <= 4) {
            send(&OruSceneEventHandler::mouseClick);
        }
    }

    /// A turn away from the person enlarges, which is a negative one for the scene.
    void wheelEvent(QWheelEvent* event) override
    {
        context_.mouse.wheel(-event->angleDelta().y(), modifierOf(*event), pixelAt(event->position()));
        send(&OruSceneEventHandler::mouseWheel);
    }

    void keyPressEvent(QKeyEvent* event) override
    {
        context_.key = event->key(); // letters are upper-case ASCII in Qt, too
        context_.keyModifiers = event->modifiers() & Qt::ShiftModifier ? 2 : 0;
        send(&OruSceneEventHandler::keyPress);
    }

private:
    void fill()
    {
        OruVisList& visualizations = scene_->render.visualizations;
        visualizations.insert(new Knot(scene_->group), false); // false: the tree owns it
        visualizations.child(QStringLiteral("triad"), OruVisTriad::typeString);
        visualizations[QStringLiteral("kelvar logo")]->visible.setValue(true);
        scene_->render.setValue(QStringLiteral("background"), QStringLiteral("#ff20242c"));
    }

    /// The whole scene from there. A draw that paints nothing reads the bounds first.
    void lookFrom(const Kelvar::Math::Matrix& orientation)
    {
        context_.noDraw = true;
        scene_->drawGl(context_);
        context_.modelView = orientation;
        scene_->zpr.zoomTo(context_, OruSceneZpr::ViewFit, context_.modelView);
        scene_->setViewpoint(context_.viewpointName, context_.modelView);
        scene_->drawGl(context_);
        context_.noDraw = false;
    }

    void paint()
    {
        if (isExposed() && gl_.makeCurrent(this)) {
            setSize(size() * devicePixelRatio());
            scene_->drawGl(context_);
            gl_.swapBuffers(this); // only ever behind a draw: a pick clears the buffer
        }
    }

    void setSize(const QSize& pixels)
    {
        context_.viewport = OruOglViewport(0, 0, pixels.width(), pixels.height());
    }

    /// Hands one event to the scene. Besides its answer, a rubber band or a tooltip that changed is a reason
    /// to repaint.
    void send(bool (OruSceneEventHandler::*operation)(OruSceneEventContext&))
    {
        gl_.makeCurrent(this);
        context_.projection = glGetOrtho(context_.viewport, context_.bounds, context_.modelView);
        const OruOglViewport band = context_.boxZoom;
        const QString tooltip = context_.tooltip;
        if ((scene_.get()->*operation)(context_) || band != context_.boxZoom || tooltip != context_.tooltip) {
            requestUpdate();
        }
    }

    static OruMouse::Button buttonOf(const QMouseEvent& event)
    {
        return event.button() == Qt::LeftButton    ? OruMouse::ButtonPick
               : event.button() == Qt::RightButton ? OruMouse::ButtonContext
                                                   : OruMouse::ButtonView;
    }

    static Kelvar::UI::Toolkit::KeyModifier modifierOf(const QInputEvent& event)
    {
        return event.modifiers() & Qt::ControlModifier ? Kelvar::UI::Toolkit::ModifierFirst
               : event.modifiers() & Qt::ShiftModifier ? Kelvar::UI::Toolkit::ModifierSecond
                                                       : Kelvar::UI::Toolkit::ModifierNone;
    }

    /// With the fractions that a broken pixel ratio gives.
    static QPointF positionOf(const QMouseEvent& event)
    {
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
        return event.localPos();
#else
        return event.position();
#endif
    }

    /// From the window system's logical units, y downwards, to device pixels, y upwards. A position is a
    /// whole pixel that was divided by the ratio; times the ratio it may fall short of that by a rounding
    /// error.
    QPoint pixelAt(const QPointF& position) const
    {
        const double slack = 1e-3;
        const QPointF device = position * devicePixelRatio() + QPointF(slack, slack);
        return {static_cast<int>(std::floor(device.x())),
                context_.viewport.height - 1 - static_cast<int>(std::floor(device.y()))};
    }

    QOpenGLContext gl_;
    OruSceneEventContext context_;
    std::unique_ptr<OruScene> scene_;
    QPoint pressed_;
};

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "xcb");
    qputenv("QT_XCB_GL_INTEGRATION", "xcb_glx"); // for pictures
    QSurfaceFormat format;
    format.setVersion(2, 1);
    format.setProfile(QSurfaceFormat::CompatibilityProfile);
    format.setDepthBufferSize(24);
    format.setStencilBufferSize(8);
    QSurfaceFormat::setDefaultFormat(format);
    QGuiApplication application(argc, argv);
    Window window;
    const QStringList arguments = QGuiApplication::arguments();
    if (arguments.value(1) == QLatin1String("--out")) {
        return window.picture(QSize(960, 720)).save(arguments.value(2)) ? EXIT_SUCCESS : EXIT_FAILURE;
    }
    window.show();
    return QGuiApplication::exec();
}
