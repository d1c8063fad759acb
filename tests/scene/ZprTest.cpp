// Drag, wheel and box: how input becomes a change of the view matrix. The standard views: which way they
// look, what they fit, what they refuse.

#include "Scene/core/OruSceneEventContext.h"
#include "Scene/navigation/OruSceneZpr.h"
#include "contracts/core/OruModifiedGroup.h"
#include "contracts/ogl/OruOglFunctions.h"
#include "tests/math/MathMatchers.h"

#include <gmock/gmock.h>

#include <cmath>
#include <limits>
#include <utility>
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

constexpr int lowest = std::numeric_limits<int>::min();
constexpr int highest = std::numeric_limits<int>::max();

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
    {"inverted, back by the lowest int", "zoomInvert", "true", {}, lowest, 1.0 / 1.1},
    {"drag by 20,000 pixels", "zoomInvert", "false", {0, -20000}, 0, 0.0},
    {"wheel factor beyond float", "zoomWheelFactor", "1e300", {}, -1, 0.0},
    {"wheel factor 0, used", "zoomWheelFactor", "0", {}, -1, 0.0},
    {"wheel factor 0, divided by", "zoomWheelFactor", "0", {}, 1, 0.0},
};

TEST_F(ZprTest, DragAndWheelScaleAboutTheCenter)
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

TEST_F(ZprTest, DragScalesByAFactorThatIsRoundedOnce)
{
    Matrix expected = ctx.modelView;
    zpr.zoomStep(ctx, static_cast<float>(std::exp(7777 * 0.01 * -1.0)), expected);
    drag(QPoint(), QPoint(0, 7777));
    EXPECT_TRUE(zpr.zoom(ctx, ctx.modelView));
    EXPECT_EQ(ctx.modelView, expected);
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
    ctx.modelView = Matrix();
    for (const auto& row : rows) {
        SCOPED_TRACE(::testing::Message() << row.delta.x() << ", " << row.delta.y());
        ctx.viewport = OruOglViewport(0, 0, 799, row.height);
        Matrix view = before;
        drag(QPoint(-20, 10), row.delta);
        ASSERT_TRUE(zpr.rotate(ctx, view));

        QMatrix4x4 turn;
        turn.rotate(row.degrees, row.axis);
        const Vector3 pivot = before.transform(ctx.center);
        for (const Vector3& point : {Vector3(0.0f, 0.0f, 0.0f), Vector3(4.0f, -1.0f, 2.0f)}) {
            const QVector3D arm = toQt(before.transform(point) - pivot);
            EXPECT_THAT(view.transform(point), NearVector(pivot + fromQt(turn.map(arm)), 1e-5));
        }
    }
    drag(QPoint(5, 5), QPoint());
    EXPECT_FALSE(zpr.rotate(ctx, ctx.modelView));
    EXPECT_EQ(ctx.modelView, Matrix());
}

struct BoxRow
{
    const char* name;
    OruOglViewport viewport;
    OruOglViewport band;
    float scale; ///< 0: refused
    QPoint bandCenter;
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

TEST_F(ZprTest, BoxBlowsUpOrShrinksAboutTheCenters)
{
    for (const BoxRow& row : boxRows) {
        SCOPED_TRACE(row.name);
        ctx.viewport = row.viewport;
        show(Matrix::rotate(Vector3(1.0f, 2.0f, -1.0f), 50.0f) * Matrix::scale(0.25f));
        ctx.boxZoom = row.band;
        const Matrix before = ctx.modelView;
        const QPoint viewCenter(row.viewport.width / 2, row.viewport.height / 2);
        const bool blowsUp = row.band.height < 0;
        const QPoint target = blowsUp ? viewCenter : row.bandCenter;
        const Vector3 moving = world(blowsUp ? row.bandCenter : viewCenter);

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
        EXPECT_NEAR(arrived.z, 0.0, 1e-4);
    }
}

TEST_F(ZprTest, RefusesWhatWouldNotBeFinite)
{
    const Matrix before = ctx.modelView;
    ctx.boxZoom = OruOglViewport(10, 10, 50, -50);
    drag(QPoint(10, 10), QPoint(50, 50));
    ctx.viewport.width = 0;
    EXPECT_FALSE(zpr.pan(ctx, ctx.modelView));
    EXPECT_FALSE(zpr.zoomBox(ctx, ctx.modelView));
    ctx.viewport.width = -1;
    EXPECT_FALSE(zpr.rotate(ctx, ctx.modelView));
    ctx.viewport.width = 800;
    ctx.bounds = BoundingBox(Vector3(0.0f, 0.0f, -INFINITY), Vector3(1.0f, 1.0f, INFINITY));
    EXPECT_FALSE(zpr.zoomTo(ctx, OruSceneZpr::ViewZ, ctx.modelView));
    EXPECT_EQ(ctx.modelView, before);

    for (const int delta : {-1, 1}) {
        ctx.modelView = before;
        ctx.mouse.wheel(delta, ModifierNone, QPoint());
        int steps = 0;
        while (steps < 2000 && zpr.zoomWheel(ctx, ctx.modelView)) {
            ++steps;
        }
        EXPECT_NEAR(steps, 915, 20);
        EXPECT_THAT(ctx.modelView.orientation(), NearMatrix(before.orientation(), 1e-3));
    }
}

TEST_F(ZprTest, TheEndsOfIntCountAsTheirNeighbours)
{
    Matrix views[3][2];
    for (const int step : {0, 1}) {
        const std::pair<QPoint, int> drags[] = {{{0, lowest + step}, highest / 4 * 3},
                                                {{highest / 3, 0}, highest - step}};
        for (int row = 0; row < 2; ++row) {
            ctx.mouse.move(QPoint(0, 0), ModifierNone);
            ctx.mouse.move(drags[row].first, ModifierNone);
            ctx.viewport.width = drags[row].second;
            views[row][step] = ctx.modelView;
            EXPECT_TRUE(zpr.rotate(ctx, views[row][step]));
        }
        ctx.boxZoom = OruOglViewport(highest - 99 - step, 300, 200, -100);
        views[2][step] = ctx.modelView;
        EXPECT_TRUE(zpr.zoomBox(ctx, views[2][step]));
    }
    for (const auto& neighbours : views) {
        EXPECT_THAT(neighbours[0], NearMatrix(neighbours[1], 1e-4));
    }
}

using Turns = std::vector<std::pair<QVector3D, float>>;

/// The turns one after the other as they act on a point.
QMatrix4x4 product(const Turns& turns)
{
    QMatrix4x4 result;
    for (const auto& turn : turns) {
        QMatrix4x4 next;
        next.rotate(turn.second, turn.first);
        result = next * result;
    }
    return result;
}

const QVector3D axisX(1, 0, 0);
const QVector3D axisY(0, 1, 0);
const QVector3D axisZ(0, 0, 1);
const Turns upright = {{axisX, -90.0f}}; // Z up on the screen, seen from -Y

struct PositionRow
{
    const char* name;
    int position;
    Vector3 upAxis;
    Turns turns;
};

const PositionRow positionRows[] = {
    {"X", 0, Vector3::Z, {{axisZ, -90.0f}, upright[0]}},
    {"X reverse", 1, Vector3::Z, {{axisZ, 90.0f}, upright[0]}},
    {"Y", 2, Vector3::Z, {{axisZ, 180.0f}, upright[0]}},
    {"Y reverse", 3, Vector3::Z, upright},
    {"Z", 4, Vector3::Z, {}},
    {"Z reverse", 5, Vector3::Z, {{axisY, 180.0f}}},
    {"isometric, X up", 6, Vector3(-3.0f, 1.0f, 2.0f), {{axisZ, 90}, {axisY, -135}, {axisX, -45}}},
    {"isometric, Y up", 6, Vector3(0.5f, -2.0f, 1.0f), {{axisY, 135}, {axisX, -45}}},
    {"isometric, Z up", 6, Vector3::Z, {{axisZ, 45}, {axisX, -135}}},
    {"fit keeps the turn", 7, Vector3::Z, {{QVector3D(1, 2, 3), 40.0f}}},
    {"beyond the last", 8, Vector3::Z, {}},
    {"ahead of the first", -1, Vector3::Z, {}},
};

TEST_F(ZprTest, EachPositionTurnsCentersAndFits)
{
    ctx.viewport = OruOglViewport(0, 0, 100, 100);
    ctx.bounds = BoundingBox(Vector3(1.0f, 2.0f, 3.0f), Vector3(3.0f, 6.0f, 11.0f));
    for (const PositionRow& row : positionRows) {
        SCOPED_TRACE(row.name);
        ctx.upAxis = row.upAxis;
        ctx.modelView = Matrix::translate(Vector3(9.0f, 8.0f, 7.0f)) *
                        Matrix::rotate(Vector3(1.0f, 2.0f, 3.0f), 40.0f) * Matrix::scale(5.0f);
        ASSERT_TRUE(zpr.zoomTo(ctx, static_cast<OruSceneZpr::Position>(row.position), ctx.modelView));

        const QMatrix4x4 turn = product(row.turns);
        BoundingBox turned;
        for (int corner = 0; corner < 8; ++corner) {
            const QVector3D arm = toQt(ctx.bounds.corner(corner) - ctx.bounds.center());
            turned.add(fromQt(turn.map(arm)));
        }
        const float scale = 1.8f / std::max(turned.width(), turned.height());
        QMatrix4x4 expected;
        expected.scale(scale);
        expected = expected * turn;
        expected.translate(-toQt(ctx.bounds.center()));
        EXPECT_THAT(ctx.modelView, NearMatrix(fromQt(expected), 1e-5));
    }
}

struct FitRow
{
    const char* name;
    BoundingBox bounds;
    BoundingBox zoomBounds;
    int width, height;
    float fitFactor;
    float scale; ///< 0: refused
    Vector3 center;
};

const BoundingBox none;
const BoundingBox wide(Vector3(0.0f, 0.0f, 0.0f), Vector3(4.0f, 2.0f, 1.0f));
const BoundingBox tall(Vector3(0.0f, 0.0f, 0.0f), Vector3(1.0f, 8.0f, 1.0f));
const BoundingBox edgeOn(Vector3(1.0f, 1.0f, 0.0f), Vector3(1.0f, 1.0f, 5.0f));
const Vector3 wideCenter(2.0f, 1.0f, 0.5f);

const FitRow fitRows[] = {
    {"limited by the width", wide, none, 100, 100, 0.9f, 0.45f, wideCenter},
    {"as wide as high", wide, none, 200, 100, 0.9f, 0.9f, wideCenter},
    {"limited by the height", wide, none, 800, 100, 0.9f, 0.9f, wideCenter},
    {"narrow view", wide, none, 100, 200, 0.5f, 0.125f, wideCenter},
    {"touching the border", tall, none, 100, 100, 1.0f, 0.25f, Vector3(0.5f, 4.0f, 0.5f)},
    {"host's box counts", tall, wide, 100, 100, 0.9f, 0.45f, wideCenter},
    {"host's box alone", none, wide, 100, 100, 0.9f, 0.45f, wideCenter},
    {"no box at all", none, none, 100, 100, 0.9f, 1.8f, Vector3(0.5f, 0.5f, 0.5f)},
    {"no extent in the view", edgeOn, none, 100, 100, 0.9f, 0.0f, {}},
    {"viewport without height", wide, none, 100, 0, 0.9f, 0.0f, {}},
    {"viewport without width", wide, none, 0, 100, 0.9f, 0.0f, {}},
    {"viewport turned inside out", wide, none, -100, -100, 0.9f, 0.0f, {}},
};

TEST_F(ZprTest, FitsTheRightBoxOrLeavesTheViewAlone)
{
    for (const FitRow& row : fitRows) {
        SCOPED_TRACE(row.name);
        ctx.bounds = row.bounds;
        ctx.zoomBounds = row.zoomBounds;
        ctx.viewport = OruOglViewport(0, 0, row.width, row.height);
        ctx.fitFactor = row.fitFactor;
        const Matrix before = Matrix::translate(Vector3(7.0f, 7.0f, 7.0f));
        ctx.modelView = before;
        EXPECT_EQ(zpr.zoomTo(ctx, OruSceneZpr::ViewZ, ctx.modelView), row.scale != 0.0f);
        const Matrix expected =
            row.scale == 0.0f ? before : Matrix::translate(-row.center) * Matrix::scale(row.scale);
        EXPECT_THAT(ctx.modelView, NearMatrix(expected, 1e-6));
    }
}

} // namespace
