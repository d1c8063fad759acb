// Drag, wheel and box: how input becomes a change of the view matrix.

#include "Scene/core/OruSceneEventContext.h"
#include "Scene/navigation/OruSceneZpr.h"
#include "contracts/core/OruModifiedGroup.h"
#include "contracts/ogl/OruOglFunctions.h"
#include "tests/math/MathMatchers.h"

#include <gmock/gmock.h>

#include <cmath>
#include <vector>

using Kelvar::Math::BoundingBox;
using Kelvar::Math::Matrix;
using Kelvar::Math::Vector3;
using Kelvar::UI::Toolkit::ModifierNone;

namespace {

/// Operations on a context whose view is turned, scaled and off the origin, so that a wrong order shows.
class ZprTest : public ::testing::Test
{
protected:
    ZprTest()
    {
        ctx.viewport = OruOglViewport(0, 0, 800, 600);
        ctx.center = Vector3(1.0f, 2.0f, 3.0f);
        show(Matrix::rotate(Vector3(1.0f, 2.0f, -1.0f), 50.0f) * Matrix::scale(0.25f) *
             Matrix::translate(Vector3(0.1f, -0.2f, 0.3f)));
    }

    void show(const Matrix& view)
    {
        ctx.modelView = view;
        const BoundingBox box(Vector3(-2.0f, -2.0f, -2.0f), Vector3(2.0f, 2.0f, 2.0f));
        ctx.projection = glGetOrtho(ctx.viewport, box, view);
    }

    void drag(const QPoint& from, const QPoint& delta)
    {
        ctx.mouse.move(from, ModifierNone);
        ctx.mouse.move(from + delta, ModifierNone);
    }

    Vector3 world(const QPoint& pixel) const
    {
        const Vector3 window(static_cast<float>(pixel.x()), static_cast<float>(pixel.y()), 0.0f);
        return window.unProject(ctx.modelView, ctx.projection, &ctx.viewport.x);
    }

    Vector3 window(const Vector3& point) const
    {
        return point.project(ctx.modelView, ctx.projection, &ctx.viewport.x);
    }

    OruModifiedGroup group;
    OruSceneZpr zpr{group};
    OruSceneEventContext ctx;
};

struct ZoomRow
{
    const char* name;
    const char* key;
    const char* value;
    QPoint dragged;
    int wheel;
    double factor; ///< 0: refused
};

const ZoomRow zoomRows[] = {
    {"drag sideways", "zoomInvert", "false", {50, 0}, 0, 0.0},
    {"drag up the screen shrinks", "zoomInvert", "false", {0, 100}, 0, std::exp(-1.0)},
    {"drag down the screen grows", "zoomInvert", "false", {7, -100}, 0, std::exp(1.0)},
    {"inverted, up", "zoomInvert", "true", {0, 100}, 0, std::exp(1.0)},
    {"inverted, down", "zoomInvert", "true", {0, -100}, 0, std::exp(-1.0)},
    {"no exponent still counts as a zoom", "zoomMove", "0", {0, 9}, 0, 1.0},
    {"factor underflows", "zoomMove", "1", {0, 200}, 0, 0.0},
    {"wheel at rest", "zoomInvert", "false", {0, 50}, -1000, 0.0},
    {"wheel forward", "zoomInvert", "false", {}, 120, 1.0 / 1.1},
    {"wheel forward by one", "zoomInvert", "false", {}, 1, 1.0 / 1.1},
    {"wheel back", "zoomInvert", "false", {}, -120, 1.1},
    {"inverted, forward", "zoomInvert", "true", {}, 3, 1.1},
    {"inverted, back", "zoomInvert", "true", {}, -3, 1.0 / 1.1},
    {"edited wheel factor", "zoomWheelFactor", "2", {}, -1, 2.0},
    {"wheel factor 0, used", "zoomWheelFactor", "0", {}, -1, 0.0},
    {"wheel factor 0, divided by", "zoomWheelFactor", "0", {}, 1, 0.0},
};

TEST_F(ZprTest, DragAndWheelScaleAboutTheCentre)
{
    const Matrix before = ctx.modelView;
    for (const ZoomRow& row : zoomRows) {
        SCOPED_TRACE(row.name);
        OruSceneZpr settings(group);
        settings.setValue(row.key, row.value);
        ctx.modelView = before;
        drag(QPoint(300, 300), row.dragged);
        const bool wheels = row.dragged.isNull() || row.wheel != 0;
        if (wheels && row.wheel != -1000) {
            ctx.mouse.wheel(row.wheel, ModifierNone, QPoint(300, 300));
        }
        const bool moved =
            wheels ? settings.zoomWheel(ctx, ctx.modelView) : settings.zoom(ctx, ctx.modelView);
        EXPECT_EQ(moved, row.factor != 0.0);
        if (!moved) {
            EXPECT_EQ(ctx.modelView, before);
            continue;
        }
        const Vector3 point(-4.0f, 0.5f, 2.0f);
        const Vector3 zoomed = ctx.center + (point - ctx.center) * static_cast<float>(row.factor);
        EXPECT_THAT(ctx.modelView.transform(point), NearVector(before.transform(zoomed), 1e-5));
        EXPECT_THAT(ctx.modelView.transform(ctx.center), NearVector(before.transform(ctx.center), 1e-6));
    }
}

TEST_F(ZprTest, StepRefusesOnlyZero)
{
    const Matrix before = ctx.modelView;
    EXPECT_FALSE(zpr.zoomStep(ctx, 0.0f, ctx.modelView));
    EXPECT_EQ(ctx.modelView, before);
    EXPECT_TRUE(zpr.zoomStep(ctx, 1.0f, ctx.modelView));
    EXPECT_THAT(ctx.modelView, NearMatrix(before, 1e-6));
}

TEST_F(ZprTest, PanKeepsThePointUnderThePointer)
{
    const Matrix turned = Matrix::rotate(Vector3(3.0f, 1.0f, 2.0f), 130.0f);
    const struct
    {
        const char* name;
        OruOglViewport viewport;
        Matrix view;
    } rows[] = {
        {"plain", {0, 0, 800, 600}, Matrix()},
        {"turned", {0, 0, 799, 301}, turned},
        {"far away", {0, 0, 800, 600}, turned * Matrix::scale(1e-3f)},
        {"close up", {0, 0, 800, 600}, Matrix::translate(Vector3(-1.0f, 0.5f, 0.0f)) * Matrix::scale(1e3f)},
        {"viewport off the origin", {100, 50, 640, 480}, turned * Matrix::scale(2.0f)},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        ctx.viewport = row.viewport;
        show(row.view);
        drag(QPoint(310, 220), QPoint(-57, 123));
        const Vector3 grabbed = world(QPoint(310, 220));
        ASSERT_TRUE(zpr.pan(ctx, ctx.modelView));
        EXPECT_THAT(window(grabbed), NearVector(Vector3(253.0f, 343.0f, 0.0f), 1e-4));

        const Matrix before = ctx.modelView;
        drag(QPoint(310, 220), QPoint());
        EXPECT_FALSE(zpr.pan(ctx, ctx.modelView));
        EXPECT_EQ(ctx.modelView, before);
    }
}

TEST_F(ZprTest, RotateTurnsByTheLengthOfTheDragAndFollowsTheHand)
{
    const struct
    {
        QPoint delta;
        float degrees;
        QVector3D axis; ///< in view space
        int height;
    } rows[] = {
        {{800, 0}, 180.0f, {0, 1, 0}, 600},      {{800, 0}, 180.0f, {0, 1, 0}, 7},
        {{0, 800}, 180.0f, {1, 0, 0}, 5000},     {{480, 640}, 180.0f, {-0.8f, 0.6f, 0}, 600},
        {{400, 0}, 90.0f, {0, 1, 0}, 600},       {{-400, 0}, -90.0f, {0, 1, 0}, 600},
        {{0, 400}, -90.0f, {1, 0, 0}, 600},      {{0, -400}, 90.0f, {1, 0, 0}, 600},
        {{-3, -4}, 1.125f, {0.8f, -0.6f, 0}, 1},
    };
    const Matrix before = ctx.modelView;
    for (const auto& row : rows) {
        SCOPED_TRACE(::testing::Message() << row.delta.x() << ", " << row.delta.y());
        ctx.viewport = OruOglViewport(0, 0, 799, row.height);
        ctx.modelView = before;
        drag(QPoint(-20, 10), row.delta);
        ASSERT_TRUE(zpr.rotate(ctx, ctx.modelView));

        QMatrix4x4 turn;
        turn.rotate(row.degrees, row.axis);
        const Vector3 pivot = before.transform(ctx.center);
        for (const Vector3& point : {Vector3(0.0f, 0.0f, 0.0f), Vector3(4.0f, -1.0f, 2.0f)}) {
            const QVector3D arm = toQt(before.transform(point) - pivot);
            EXPECT_THAT(ctx.modelView.transform(point), NearVector(pivot + fromQt(turn.map(arm)), 1e-5));
        }
    }
    ctx.modelView = before;
    drag(QPoint(5, 5), QPoint());
    EXPECT_FALSE(zpr.rotate(ctx, ctx.modelView));
    EXPECT_EQ(ctx.modelView, before);
}

struct BoxRow
{
    const char* name;
    OruOglViewport viewport;
    OruOglViewport band;
    float scale; ///< 0: refused
    QPoint bandCentre;
};

const BoxRow boxRows[] = {
    {"no band", {0, 0, 800, 600}, {}, 0.0f, {}},
    {"too narrow", {0, 0, 800, 600}, {10, 300, 4, -100}, 0.0f, {}},
    {"too low", {0, 0, 800, 600}, {10, 300, 100, 4}, 0.0f, {}},
    {"smallest, to the lower left", {0, 0, 800, 600}, {100, 200, -5, -5}, 10.0f, {97, 197}},
    {"blow-up by the width", {0, 0, 800, 600}, {200, 400, 400, -150}, 2.0f, {400, 325}},
    {"blow-up by the height", {0, 0, 800, 600}, {200, 400, 100, -300}, 2.0f, {250, 250}},
    {"blow-up at its limit", {0, 0, 800, 600}, {20, 40, 5, -5}, 10.0f, {22, 37}},
    {"blow-up of more than the view", {0, 0, 800, 600}, {0, 1000, 1000, -1000}, 0.6f, {500, 500}},
    {"shrink by the width", {0, 0, 800, 600}, {400, 300, -200, 100}, 0.25f, {300, 350}},
    {"shrink by the height", {0, 0, 800, 600}, {400, 300, 80, 300}, 0.5f, {440, 450}},
    {"shrink at its limit", {0, 0, 800, 600}, {50, 60, 10, 10}, 0.1f, {55, 65}},
    {"shrink into more than the view", {0, 0, 800, 600}, {0, 0, 1600, 600}, 2.0f, {800, 300}},
    {"odd sizes", {0, 0, 801, 601}, {10, 60, 7, -101}, 601.0f / 101.0f, {13, 9}},
    {"viewport off the origin", {100, 50, 640, 480}, {200, 400, 320, -240}, 2.0f, {360, 280}},
};

TEST_F(ZprTest, BoxBlowsUpOrShrinksAboutTheCentres)
{
    for (const BoxRow& row : boxRows) {
        SCOPED_TRACE(row.name);
        ctx.viewport = row.viewport;
        show(Matrix::rotate(Vector3(1.0f, 2.0f, -1.0f), 50.0f) * Matrix::scale(0.25f));
        ctx.boxZoom = row.band;
        const Matrix before = ctx.modelView;
        const QPoint viewCentre(row.viewport.width / 2, row.viewport.height / 2);
        const bool blowsUp = row.band.height < 0;
        const QPoint target = blowsUp ? viewCentre : row.bandCentre;
        const Vector3 moving = world(blowsUp ? row.bandCentre : viewCentre);

        ASSERT_EQ(zpr.zoomBox(ctx, ctx.modelView), row.scale != 0.0f);
        EXPECT_EQ(ctx.boxZoom, row.band);
        if (row.scale == 0.0f) {
            EXPECT_EQ(ctx.modelView, before);
            continue;
        }
        EXPECT_NEAR(ctx.modelView.transformDirection(Vector3::X).length() / 0.25f, row.scale, 1e-4f);
        const Vector3 arrived = window(moving);
        EXPECT_NEAR(arrived.x, target.x(), 0.01);
        EXPECT_NEAR(arrived.y, target.y(), 0.01);
    }
}

TEST_F(ZprTest, CopyStaysWithItsSourceAndAssignmentWritesToItsOwnNode)
{
    EXPECT_EQ(zpr.type(), "scene.zpr");
    zpr.zoomMove.setValue(0.5);
    OruSceneZpr copy(zpr);
    copy.zoomMove.setValue(0.25);
    EXPECT_EQ(zpr.zoomMove.value(), 0.25);

    OruSceneZpr other(group);
    zpr.zoomInvert.setValue(true);
    EXPECT_EQ(&(other = zpr), &other);
    QString text;
    EXPECT_EQ(other.getValue("zoomMove", text, QString()), "0.25");
    EXPECT_EQ(other.getValue("zoomInvert", text, QString()), "true");
    other.zoomMove.setValue(0.125);
    EXPECT_EQ(zpr.zoomMove.value(), 0.25);
}

} // namespace
