// What is drawn over the picture, probed at pixels. Coordinates are those of OpenGL: y upwards.

#include "Scene/render/OruProcessTimes.h"
#include "contracts/ogl/OruOglGl.h"
#include "tests/scene/SceneFixture.h"

#include <cmath>
#include <limits>

using namespace kelvartest;

namespace {

class OverlaysGLTest : public SceneTest
{
protected:
    QImage frame()
    {
        scene.drawGl(ctx);
        return gl.grab();
    }
    static QColor at(const QImage& image, int x, int y)
    {
        return image.pixelColor(x, image.height() - 1 - y);
    }
};

const QColor background(Qt::black);
const QColor tooltipFill = QColor::fromRgb(255, 255, 225);

/// The smallest rectangle, y upwards, that holds all pixels of a colour; null if there is none.
QRect extent(const QImage& image, const QColor& color)
{
    QRect rectangle;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixelColor(x, y) == color) {
                rectangle |= QRect(x, image.height() - 1 - y, 1, 1);
            }
        }
    }
    return rectangle;
}

TEST_F(OverlaysGLTest, FrameIsExactDarkGrayInAnyStateOfTheHost)
{
    const QColor gray(Qt::darkGray);
    for (const GLenum capability : {GL_DITHER, GL_LIGHTING, GL_DEPTH_TEST, GL_TEXTURE_2D, GL_LINE_STIPPLE}) {
        glEnable(capability);
        const QImage image = frame();
        for (const QPoint& point : {QPoint(0, 0), QPoint(159, 0), QPoint(0, 119), QPoint(159, 119),
                                    QPoint(80, 0), QPoint(80, 119), QPoint(0, 60), QPoint(159, 60)}) {
            EXPECT_EQ(at(image, point.x(), point.y()), gray)
                << glName(capability) << " at " << point.x() << "," << point.y();
        }
        EXPECT_EQ(at(image, 1, 1), background) << glName(capability);
        glDisable(capability);
    }
}

TEST_F(OverlaysGLTest, TooltipStandsWhereThereIsRoom)
{
    ctx.tooltip = QStringLiteral("tip");
    const struct
    {
        const char* where;
        QPoint pointer;
        bool right, below;
    } rows[] = {
        {"middle", {60, 100}, true, true},
        {"right edge", {155, 100}, false, true},
        {"lower edge", {60, 5}, true, false},
        {"outside to the left", {-10, 100}, true, true},
    };
    for (const auto& row : rows) {
        ctx.mouse.move(row.pointer, Kelvar::UI::Toolkit::ModifierNone);
        const QRect box = extent(frame(), tooltipFill);
        ASSERT_FALSE(box.isNull()) << row.where;
        const int x = std::max(row.pointer.x(), 0);
        EXPECT_NEAR(row.right ? box.left() : box.right(), x, row.right ? 2 : 3) << row.where;
        EXPECT_NEAR(row.below ? box.bottom() + 24 : box.top(), row.pointer.y(), row.below ? 3 : 2)
            << row.where;
    }
    ctx.mouse.move(QPoint(60, std::numeric_limits<int>::min()), Kelvar::UI::Toolkit::ModifierNone);
    EXPECT_FALSE(extent(frame(), tooltipFill).isNull()) << "no sum has turned round";
    for (const QString& none : {QString(), QStringLiteral("")}) {
        ctx.tooltip = none;
        EXPECT_TRUE(extent(frame(), tooltipFill).isNull());
    }
}

TEST_F(OverlaysGLTest, BandInvertsItsOutlineWhicheverWayItWasDragged)
{
    const QImage without = frame();
    const struct
    {
        QPoint from;
        QSize size;
        bool drawn;
    } rows[] = {
        {{40, 30}, {60, 50}, true}, {{100, 80}, {-60, -50}, true}, {{40, 30}, {5, 5}, false},
        {{40, 30}, {-5, 5}, false}, {{40, 30}, {6, 0}, true},      {{40, 30}, {0, -6}, true},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.size.width() * 1000 + row.size.height());
        ctx.boxZoom = {row.from.x(), row.from.y(), row.size.width(), row.size.height()};
        const QImage image = frame();
        EXPECT_EQ(image != without, row.drawn);
        if (std::abs(row.size.width()) == 60) {
            EXPECT_EQ(at(image, 70, 30), QColor(Qt::white)) << "lower edge";
            EXPECT_EQ(at(image, 40, 55), QColor(Qt::white)) << "left edge";
            EXPECT_EQ(at(image, 70, 55), background) << "an outline, not a filled box";
        }
    }
}

TEST_F(OverlaysGLTest, PerformanceTextSitsAtTheLowerRight)
{
    EXPECT_TRUE(extent(frame(), QColor(Qt::lightGray)).isNull());
    scene.render.string().setValue(QStringLiteral("textInfo"), true);
    const QRect box = extent(frame(), QColor(Qt::lightGray));
    ASSERT_FALSE(box.isNull());
    EXPECT_EQ(box.right(), 159);
    EXPECT_EQ(box.top(), 0) << "y upwards: the box stands on the lower edge";
    EXPECT_LT(box.bottom(), 40);
}

TEST(OruProcessTimesTest, TextOfTheFrameRate)
{
    const struct
    {
        double seconds;
        const char* text;
    } rows[] = {
        {0.0, "fps(high)"}, {1.0 / 32.0, "fps(high)"}, {1.0 / 31.9, "fps(  32)"}, {0.1, "fps(  10)"},
        {4.0, "fps(   0)"}, {0.001, "fps(high)"},      {1.0 / 3.0, "fps(   3)"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(OruProcessTimes::frameRateText(row.seconds).toStdString(), row.text) << row.seconds;
    }
    OruProcessTimes start;
    start.userTime -= 10000000;
    const std::string text = start.performanceText().toStdString();
    EXPECT_EQ(text.find("fps(   1) available("), 0u) << text;
}

} // namespace
