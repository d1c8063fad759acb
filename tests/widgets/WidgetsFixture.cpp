#include "tests/widgets/WidgetsFixture.h"

#include "contracts/ogl/OruOglGl.h"
#include "hosts/mesh/ModelParts.h"
#include "tests/hosts/Models.h"

#include <QAbstractEventDispatcher>
#include <QApplication>
#include <QElapsedTimer>
#include <QProcess>
#include <QScreen>

using namespace hostkit;

namespace kelvartest {

namespace {

/// So long a window may take; only a broken one does.
constexpr int patienceMilliseconds = 20000;

/// An event loop that had nothing to do for so long has heard of everything.
constexpr int quietMilliseconds = 40;

void fill(HostScene& host)
{
    Model model;
    for (const float x : {-2.0f, 2.0f}) {
        model.parts.emplace_back(built(cubeSource(Kelvar::Math::Vector3(x, 0, 0))));
    }
    ModelParts(host.scene().render.visualizations).add(model);
    QString error;
    EXPECT_TRUE(host.setValue("render/visualization/cube.2/movable", "true", &error)) << error.toStdString();
    EXPECT_TRUE(host.setValue("render/background", "#ff38465a", &error)) << error.toStdString();
    host.showFrom("iso");
}

} // namespace

WidgetsFixture::WidgetsFixture()
{
    view.setContent(fill);
    main.setCentralWidget(&view);
    main.setGeometry(0, 0, 900, 600);
}

void WidgetsFixture::show()
{
    main.show();
    ASSERT_TRUE(await([&] { return view.window().isExposed(); }));
    act(QStringLiteral("mousemove 1000 700 windowfocus %1").arg(main.winId()));
    ASSERT_TRUE(await([&] { return main.isActiveWindow(); }));
    ASSERT_TRUE(shows());
}

void WidgetsFixture::act(const QString& xdotool)
{
    QProcess process;
    bool finished = false;
    QObject::connect(&process, QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished),
                     [&] { finished = true; });
    process.start(QStringLiteral("xdotool"), xdotool.split(QLatin1Char(' '), Qt::SkipEmptyParts));
    EXPECT_TRUE(await([&] { return finished; }) && process.exitCode() == 0) << xdotool.toStdString();
    QElapsedTimer quiet;
    quiet.start();
    await([&] {
        if (QAbstractEventDispatcher::instance()->processEvents(QEventLoop::AllEvents)) {
            quiet.restart();
        }
        return quiet.elapsed() > quietMilliseconds;
    });
}

bool WidgetsFixture::await(const std::function<bool()>& question)
{
    QElapsedTimer clock;
    clock.start();
    while (!question()) {
        if (clock.elapsed() > patienceMilliseconds) {
            return false;
        }
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    }
    return true;
}

QString WidgetsFixture::at(const QWidget& widget)
{
    const QPoint middle = widget.mapToGlobal(widget.rect().center());
    return QStringLiteral("mousemove %1 %2").arg(middle.x()).arg(middle.y());
}

QString WidgetsFixture::at(const char* name)
{
    const OruSceneEventContext& ctx = view.host().context();
    const auto pixel =
        cube(name).bounds().center().project(ctx.modelView, ctx.projection, ctx.viewport.data());
    const QPoint corner = view.mapToGlobal(QPoint());
    return QStringLiteral("mousemove %1 %2")
        .arg(corner.x() + qRound(pixel.x))
        .arg(corner.y() + ctx.viewport.height - 1 - qRound(pixel.y));
}

MeshVisualization& WidgetsFixture::cube(const char* name)
{
    OruProperties* const node = view.host().scene().render.visualizations.childByName(QLatin1String(name));
    return dynamic_cast<MeshVisualization&>(*node);
}

QImage WidgetsFixture::screen(const QWidget& widget)
{
    const QPoint corner = widget.mapToGlobal(QPoint());
    return QGuiApplication::primaryScreen()
        ->grabWindow(0, corner.x(), corner.y(), widget.width(), widget.height())
        .toImage()
        .convertToFormat(QImage::Format_RGB32);
}

QImage WidgetsFixture::frame()
{
    QImage image(view.size(), QImage::Format_RGB32);
    view.run([&](HostScene& host) {
        host.draw();
        glReadBuffer(GL_BACK);
        glReadPixels(0, 0, image.width(), image.height(), GL_BGRA, GL_UNSIGNED_BYTE, image.bits());
        return false;
    });
    return image.mirrored().convertToFormat(QImage::Format_RGB32);
}

bool WidgetsFixture::shows()
{
    return await([&] { return screen(view) == frame(); });
}

void WidgetsFixture::keepScreenshot(const char* name)
{
    const QString folder = qEnvironmentVariable("KELVAR_SCREENSHOTS");
    if (!folder.isEmpty()) {
        QGuiApplication::primaryScreen()->grabWindow(0).save(folder + '/' + QLatin1String(name), "PNG");
    }
}

} // namespace kelvartest
