// What is drawn over the picture, probed at pixels. Coordinates are those of OpenGL: y upwards.

#include "Scene/core/OruSceneSelectContext.h"
#include "Scene/render/OruProcessTimes.h"
#include "contracts/core/OruResource.h"
#include "contracts/ogl/OruOglCache.h"
#include "contracts/ogl/OruOglGl.h"
#include "contracts/ogl/OruOglText.h"
#include "contracts/vis/OruVisTriad.h"
#include "tests/scene/SceneFixture.h"

#include <sys/resource.h>

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
};

QColor at(const QImage& image, int x, int y)
{
    return image.pixelColor(x, image.height() - 1 - y);
}

const QColor background(Qt::black);
const QColor tooltipFill = QColor::fromRgb(255, 255, 225);

/// The smallest rectangle, y upwards, that holds all pixels of a color, or of all others; null without any.
QRect extent(const QImage& image, const QColor& color, bool equal = true)
{
    QRect rectangle;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if ((image.pixelColor(x, y) == color) == equal) {
                rectangle |= QRect(x, image.height() - 1 - y, 1, 1);
            }
        }
    }
    return rectangle;
}

/// How many of the outermost pixels of a picture have another color.
int holes(const QImage& image, const QColor& color)
{
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
        const bool edge = y == 0 || y == image.height() - 1;
        for (int x = 0; x < image.width(); x += edge ? 1 : image.width() - 1) {
            count += image.pixelColor(x, y) != color ? 1 : 0;
        }
    }
    return count;
}

TEST_F(OverlaysGLTest, FrameIsExactDarkGrayInAnyStateOfTheHost)
{
    for (const GLenum capability : {GL_DITHER, GL_LIGHTING, GL_DEPTH_TEST, GL_TEXTURE_2D, GL_LINE_STIPPLE}) {
        glEnable(capability);
        const QImage image = frame();
        EXPECT_EQ(holes(image, Qt::darkGray), 0) << glName(capability);
        EXPECT_EQ(at(image, 1, 1), background) << glName(capability);
        glDisable(capability);
    }
}

TEST_F(OverlaysGLTest, FrameIsWholeAtEverySize)
{
    for (int i = 0; i < 220; ++i) {
        const QSize size(2 + i % 159, 2 + 7 * i % 119);
        ctx.viewport = {0, 0, size.width(), size.height()};
        const QImage view = frame().copy(QRect(QPoint(0, gl.size().height() - size.height()), size));
        EXPECT_EQ(holes(view, Qt::darkGray), 0) << size.width() << " x " << size.height();
        QImage captured;
        ASSERT_TRUE(i % 7 != 0 || scene.drawGl(ctx, captured));
        EXPECT_EQ(holes(captured, Qt::darkGray), 0) << "captured " << size.width() << " x " << size.height();
    }
}

TEST_F(OverlaysGLTest, TooltipStandsWhereThereIsRoom)
{
    ctx.tooltip = QStringLiteral("tip");
    scene.render.string().setValue(QStringLiteral("background"), QColor(200, 200, 200));
    const OruResource resource{QString(), QString(), QString()};
    OruOglCache cache(resource);
    const QSize text = OruOglText(cache, 7, OruOglText::defaultFace).size(ctx.tooltip);
    const QSize fill = text + QSize(8, 8); // less a pixel of frame on each side
    const int x = 160 - 24 - text.width();
    const int y = 24 + 2 * text.height();
    const struct
    {
        const char* where;
        int viewY;
        QPoint pointer;
        bool right, below;
        QPoint place;
    } rows[] = {
        {"up to the right limit", 0, {x, 100}, true, true, {x, 76}},
        {"beyond it", 0, {x + 1, 100}, false, true, {x + 1, 76}},
        {"down to the lower limit", 0, {40, y}, true, true, {40, y - 24}},
        {"below it", 0, {40, y - 1}, true, false, {40, y - 1}},
        {"below it, at the right", 0, {x + 1, y - 1}, true, false, {x + 1, y - 1}},
        {"lowest row", 0, {40, 0}, true, false, {40, 1}},
        {"a view further up", 50, {40, 50 + y}, true, true, {40, 26 + y}},
        {"below its limit", 50, {40, 49 + y}, true, false, {40, 49 + y}},
        {"outside to the left", 0, {-10, 100}, true, true, {0, 76}},
    };
    for (const auto& row : rows) {
        ctx.viewport = {0, row.viewY, 160, 120 - row.viewY};
        ctx.mouse.move(row.pointer, Kelvar::UI::Toolkit::ModifierNone);
        const QImage image = frame();
        const QPoint corner(row.right ? row.place.x() + 1 : row.place.x() - 1 - fill.width(),
                            row.below ? row.place.y() - 1 - fill.height() : row.place.y() + 1);
        const QRect inside(1, 1 + row.viewY, 158, 118 - row.viewY);
        EXPECT_EQ(extent(image, tooltipFill), QRect(corner, fill) & inside) << row.where;
        const QPoint beside(corner.x() + (row.right ? fill.width() + 1 : -2), corner.y() + 5);
        EXPECT_LT(at(image, beside.x(), beside.y()).red(), 150) << row.where << ": its shadow";
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
    const QPoint nowhere;
    const struct
    {
        QPoint from;
        QSize size;
        QPoint onOutline;
    } rows[] = {
        {{40, 30}, {60, 50}, {70, 30}}, {{100, 80}, {-60, -50}, {40, 55}}, {{40, 30}, {5, 5}, nowhere},
        {{40, 30}, {-5, 5}, nowhere},   {{40, 30}, {60, 0}, {70, 30}},     {{40, 30}, {0, -20}, {40, 20}},
        {{40, 30}, {-30, 1}, {25, 30}}, {{40, 30}, {6, 0}, {43, 30}},      {{40, 30}, {0, -6}, {40, 27}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.size.width() * 1000 + row.size.height());
        ctx.boxZoom = {row.from.x(), row.from.y(), row.size.width(), row.size.height()};
        const QImage image = frame();
        EXPECT_EQ(image == without, row.onOutline == nowhere);
        if (row.onOutline != nowhere) {
            EXPECT_EQ(at(image, row.onOutline.x(), row.onOutline.y()), QColor(Qt::white));
        }
        EXPECT_EQ(at(image, 70, 55), background) << "an outline, not a filled box";
    }
}

/// Four views share a window. What the host must do itself is to clip: a frame clears the whole window.
struct SplitGLTest : SceneTest
{
    SplitGLTest()
        : SceneTest(QSize(400, 300))
    {
        scene.render.visualizations.child(QStringLiteral("triad"), OruVisTriad::typeString);
        const auto logo = scene.render.visualizations[QStringLiteral("kelvar logo")];
        logo->setValue(QStringLiteral("visible"), QStringLiteral("true"));
        logo->setValue(QStringLiteral("file"), QStringLiteral(KELVAR_RESOURCES "/logoKelvar.png"));
        scene.render.string().setValue(QStringLiteral("textInfo"), false);
    }

    /// The window with the view at `corner` and, all relative to that, pointer, tooltip and band.
    QImage window(const QPoint& corner, const QPoint& pointer)
    {
        ctx.viewport = {corner.x(), corner.y(), 200, 150};
        ctx.tooltip = QStringLiteral("a tooltip");
        ctx.mouse.move(corner + pointer, Kelvar::UI::Toolkit::ModifierNone);
        ctx.boxZoom = {corner.x() + 120, corner.y() + 60, 79, -60};
        scene.drawGl(ctx);
        return gl.grab();
    }
    bool picked(const QPoint& pixel)
    {
        OruSceneSelectContext sc(ctx);
        sc.pickPoint = QPoint(ctx.viewport.x, ctx.viewport.y) + pixel;
        sc.pickSize = QSize(1, 1);
        return scene.render.select(sc).size() == 1;
    }
};

TEST_F(SplitGLTest, ViewsLookAndPickAlikeWhereverTheyStandInTheWindow)
{
    const QPoint corners[] = {{0, 0}, {200, 0}, {0, 150}, {200, 150}};
    const QImage first = window(corners[0], {190, 120}).copy(0, 150, 200, 150);
    const QSize box = extent(first, tooltipFill).size();
    EXPECT_EQ(at(first, 195, 145), background) << "the white of the logo is transparent";
    for (const QPoint& corner : corners) {
        SCOPED_TRACE(corner.x() + corner.y());
        const QImage image = window(corner, {190, 120});
        EXPECT_EQ(image.copy(corner.x(), 150 - corner.y(), 200, 150), first);
        EXPECT_EQ(extent(image, background, false), QRect(corner, QSize(200, 150)))
            << "nothing beside the view";
        EXPECT_TRUE(picked({195, 145})) << "the corner of the logo";
        EXPECT_FALSE(picked({196, 145}));
        EXPECT_EQ(extent(window(corner, {10, 120}), tooltipFill).size(), box) << "not cut off at the left";
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
    rusage before = {};
    getrusage(RUSAGE_SELF, &before);
    for (std::int64_t OruProcessTimes::*const mode :
         {&OruProcessTimes::kernelTime, &OruProcessTimes::userTime}) {
        OruProcessTimes start;
        const timeval& used = mode == &OruProcessTimes::userTime ? before.ru_utime : before.ru_stime;
        EXPECT_NEAR(static_cast<double>(start.*mode) / 1e7,
                    static_cast<double>(used.tv_sec) + static_cast<double>(used.tv_usec) / 1e6, 0.01);
        start.*mode -= 10000000;
        const std::string text = start.performanceText().toStdString();
        EXPECT_EQ(text.find("fps(   1) available("), 0u) << text;
    }
}

} // namespace
