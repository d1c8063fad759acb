// A window, and a person's hands on it. After each step the window has to show what a scene shows that was
// told of the same events, to the pixel; what the step does to the view is checked on that scene.

#include "hosts/mesh/MeshVisualization.h"
#include "tests/live/LiveViewer.h"

#include <QGuiApplication>
#include <QWindow>

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>

using Kelvar::Math::Matrix;
using Kelvar::Math::Vector3;
using kelvartest::LiveViewer;
using testing::HasSubstr;

namespace {

/// How a scene was looked at. Pixels count from the upper left.
class View
{
public:
    explicit View(hostkit::HostScene& host)
        : modelView_(host.context().modelView)
        , projection_(host.context().projection)
        , viewport_(host.context().viewport)
    {}

    float scale() const { return modelView_.transformDirection(Vector3(1, 0, 0)).length(); }

    /// The direction towards the eye, in the model.
    Vector3 eye() const { return Vector3(modelView_(0, 2), modelView_(1, 2), modelView_(2, 2)) / scale(); }

    /// Where a point of the model is seen, and a point that is seen there.
    Vector3 pixelOf(const Vector3& point) const
    {
        return flipped(point.project(modelView_, projection_, viewport_.data()));
    }
    Vector3 pointAt(const Vector3& pixel) const
    {
        return flipped(pixel).unProject(modelView_, projection_, viewport_.data());
    }

private:
    Vector3 flipped(const Vector3& pixel) const
    {
        return Vector3(pixel.x, static_cast<float>(viewport_.height - 1) - pixel.y, pixel.z);
    }

    Matrix modelView_;
    Matrix projection_;
    OruOglViewport viewport_;
};

void expectNear(const Vector3& vector, const Vector3& expected, double tolerance, const char* what)
{
    const Vector3 off = vector - expected;
    EXPECT_LE(off.length(), tolerance) << what << ": off by " << off.x << ' ' << off.y << ' ' << off.z;
}

/// Two pixels of the window, whatever their depth.
void expectSamePixel(const Vector3& pixel, const Vector3& expected, double tolerance)
{
    expectNear(Vector3(pixel.x, pixel.y, 0), Vector3(expected.x, expected.y, 0), tolerance, "pixels");
}

hostkit::MeshVisualization& part(LiveViewer& viewer, const char* name)
{
    OruProperties* const node = viewer.scene().scene().render.visualizations.find(
        QStringLiteral("2CylinderEngine/") + QLatin1String(name));
    return dynamic_cast<hostkit::MeshVisualization&>(*node);
}

} // namespace

TEST(LiveWindow, TurnsPansAndZooms)
{
    const struct
    {
        const char* name;
        const char* xdotool;
        double zoom;
        /// What is seen at one place before is seen at the other afterwards; without: the center stays.
        Vector3 from = {};
        Vector3 to = {};
    } rows[] = {
        {"rotate", "mousemove 320 240 mousedown 1 mousemove 340 230 mousemove 380 200 mouseup 1", 1},
        {"pan", "keydown ctrl mousedown 2 mousemove 400 250 mousemove 300 280 mouseup 2 keyup ctrl", 1,
         Vector3(380, 200, 0.5f), Vector3(300, 280, 0)},
        {"zoom", "keydown shift mousedown 2 mousemove 300 270 mousemove 300 240 mouseup 2 keyup shift",
         std::exp(-0.01 * 40)},
        {"called off", "mousemove 320 240 mousedown 1 mousemove 380 200 key Escape mouseup 1", 1},
        {"wheel back", "mousemove 380 200 click 5 click 5", 1 / (1.1 * 1.1), Vector3(380, 200, 0.5f),
         Vector3(380, 200, 0)},
        {"box upwards", "mousemove 100 440 mousedown 3 mousemove 200 300 mousemove 420 200 mouseup 3", 0.5,
         Vector3(320, 240, 0.5f), Vector3(260, 320, 0)},
    };
    LiveViewer viewer("1");
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const View before(viewer.scene());
        viewer.act(row.xdotool);
        const View after(viewer.scene());
        EXPECT_NEAR(after.scale() / before.scale(), row.zoom, 1e-3);
        const bool center = row.from == Vector3();
        const Vector3 point = center ? viewer.scene().context().bounds.center() : before.pointAt(row.from);
        expectSamePixel(after.pixelOf(point), center ? before.pixelOf(point) : row.to,
                        std::max(1.0, row.zoom));
        EXPECT_EQ((after.eye() - before.eye()).length() > 1e-4f, &row == rows) << "the first row turns";
    }
    EXPECT_TRUE(viewer.terminates());
    EXPECT_EQ(viewer.savedState().toStdString(), viewer.state().toStdString());
}

TEST(LiveWindow, TakesKeysAndClosesAtOne)
{
    LiveViewer viewer("1");
    viewer.act("key shift+x");
    expectNear(View(viewer.scene()).eye(), Vector3(-1, 0, 0), 1e-4, "eye");
    EXPECT_TRUE(viewer.closes("key ctrl+q"));
    EXPECT_EQ(viewer.savedState().toStdString(), viewer.state().toStdString());
}

TEST(LiveWindow, TellsMarksAndMovesParts)
{
    LiveViewer viewer("1", {"--set", "render/visualization/2CylinderEngine/body_2/movable=true"});
    const QRect beside(320, 260, 100, 50);
    const QImage untold = viewer.screen().copy(beside);
    viewer.act("mousemove 330 260");
    EXPECT_EQ(viewer.scene().context().tooltip, "body_2\ntriangles: 9228");
    EXPECT_NE(viewer.screen().copy(beside), untold);
    viewer.act("mousemove 637 3");
    EXPECT_EQ(viewer.screen().copy(beside), untold);

    viewer.act("mousemove 330 260 click 1");
    EXPECT_TRUE(part(viewer, "body_2").marked.value());

    const View view(viewer.scene());
    viewer.act("mousedown 1 mousemove 300 200 mousemove 250 180 mouseup 1");
    const Vector3 moved = part(viewer, "body_2").offset.value().transform(Vector3());
    expectSamePixel(view.pixelOf(moved), view.pixelOf(Vector3()) + Vector3(-80, -80, 0), 0.1);
    expectNear(View(viewer.scene()).eye(), view.eye(), 1e-4, "the view stays");

    viewer.act("mousemove 78 337 click 1");
    expectNear(View(viewer.scene()).eye(), Vector3(0, 0, 1), 1e-4, "from the label Z");
    EXPECT_TRUE(viewer.terminates());
    EXPECT_EQ(viewer.savedState().toStdString(), viewer.state().toStdString());
    EXPECT_THAT(viewer.output().toStdString(), HasSubstr("dropped \"body_2\" on \""));
}

TEST(LiveWindow, EndsAGestureWhenItLosesTheFocus)
{
    LiveViewer viewer("1");
    QWindow other;
    other.setGeometry(800, 600, 50, 50);
    other.show();
    while (!other.isExposed()) {
        QCoreApplication::processEvents();
    }
    const Matrix before = viewer.scene().context().modelView;
    viewer.act("mousemove 200 100 mousedown 3 mousemove 300 200 mousemove 400 300");
    EXPECT_NE(viewer.scene().context().boxZoom, OruOglViewport());
    viewer.act(QStringLiteral("windowfocus %1").arg(other.winId()), "focus-out");
    EXPECT_EQ(viewer.scene().context().boxZoom, OruOglViewport());
    viewer.act("mousemove 420 320 mouseup 3 mousemove 10 10", "move - 0.016");
    viewer.act("mousemove 100 100 mousedown 3 mousemove 200 200 mousemove 320 240", "move - 0.50");
    EXPECT_EQ(viewer.scene().context().modelView, before) << "no box zoom ran";
    EXPECT_TRUE(viewer.terminates());
    EXPECT_EQ(viewer.savedState().toStdString(), viewer.state().toStdString());
}

TEST(LiveWindow, FindsThePixelAtEveryRatio)
{
    for (const char* const ratio : {"1.25", "1.5", "1.75"}) {
        SCOPED_TRACE(ratio);
        LiveViewer viewer(ratio, {}, QSize(782, 583)); // no whole number of Qt's units
        viewer.act(QStringLiteral("mousemove 78 %1 click 1").arg(viewer.size().height() - 143));
        const QPoint pixel = viewer.scene().context().mouse.curpos();
        EXPECT_EQ(pixel.x(), 78);
        EXPECT_EQ(pixel.y(), 142);
        expectNear(View(viewer.scene()).eye(), Vector3(0, 0, 1), 1e-4, "from the label Z");
        EXPECT_TRUE(viewer.terminates());
    }
}
