// The standard views: which way they look, what they fit, what they refuse.

#include "Scene/core/OruSceneEventContext.h"
#include "Scene/navigation/OruSceneZpr.h"
#include "contracts/core/OruModifiedGroup.h"
#include "tests/math/MathMatchers.h"

#include <gmock/gmock.h>

#include <utility>
#include <vector>

using Kelvar::Math::BoundingBox;
using Kelvar::Math::Matrix;
using Kelvar::Math::Vector3;

namespace {

class ZoomToTest : public ::testing::Test
{
protected:
    ZoomToTest()
    {
        ctx.viewport = OruOglViewport(0, 0, 100, 100);
        ctx.bounds = BoundingBox(Vector3(1.0f, 2.0f, 3.0f), Vector3(3.0f, 6.0f, 11.0f));
    }

    OruModifiedGroup group;
    OruSceneZpr zpr{group};
    OruSceneEventContext ctx;
};

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

TEST_F(ZoomToTest, EachPositionTurnsCentresAndFits)
{
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
    int width;
    int height;
    float fitFactor;
    float scale; ///< 0: refused
    Vector3 centre;
};

const BoundingBox none;
const BoundingBox wide(Vector3(0.0f, 0.0f, 0.0f), Vector3(4.0f, 2.0f, 1.0f));
const BoundingBox tall(Vector3(0.0f, 0.0f, 0.0f), Vector3(1.0f, 8.0f, 1.0f));
const BoundingBox edgeOn(Vector3(1.0f, 1.0f, 0.0f), Vector3(1.0f, 1.0f, 5.0f));
const Vector3 wideCentre(2.0f, 1.0f, 0.5f);

const FitRow fitRows[] = {
    {"limited by the width", wide, none, 100, 100, 0.9f, 0.45f, wideCentre},
    {"as wide as high", wide, none, 200, 100, 0.9f, 0.9f, wideCentre},
    {"limited by the height", wide, none, 800, 100, 0.9f, 0.9f, wideCentre},
    {"narrow view", wide, none, 100, 200, 0.5f, 0.125f, wideCentre},
    {"touching the border", tall, none, 100, 100, 1.0f, 0.25f, Vector3(0.5f, 4.0f, 0.5f)},
    {"host's box counts", tall, wide, 100, 100, 0.9f, 0.45f, wideCentre},
    {"host's box alone", none, wide, 100, 100, 0.9f, 0.45f, wideCentre},
    {"no box at all", none, none, 100, 100, 0.9f, 1.8f, Vector3(0.5f, 0.5f, 0.5f)},
    {"no extent in the view", edgeOn, none, 100, 100, 0.9f, 0.0f, {}},
    {"viewport without height", wide, none, 100, 0, 0.9f, 0.0f, {}},
    {"viewport without width", wide, none, 0, 100, 0.9f, 0.0f, {}},
    {"viewport turned inside out", wide, none, -100, -100, 0.9f, 0.0f, {}},
};

TEST_F(ZoomToTest, FitsTheRightBoxOrLeavesTheViewAlone)
{
    for (const FitRow& row : fitRows) {
        SCOPED_TRACE(row.name);
        ctx.bounds = row.bounds;
        ctx.zoomBounds = row.zoomBounds;
        ctx.viewport.width = row.width;
        ctx.viewport.height = row.height;
        ctx.fitFactor = row.fitFactor;
        const Matrix before = Matrix::translate(Vector3(7.0f, 7.0f, 7.0f));
        ctx.modelView = before;
        EXPECT_EQ(zpr.zoomTo(ctx, OruSceneZpr::ViewZ, ctx.modelView), row.scale != 0.0f);
        const Matrix expected =
            row.scale == 0.0f ? before : Matrix::translate(-row.centre) * Matrix::scale(row.scale);
        EXPECT_THAT(ctx.modelView, NearMatrix(expected, 1e-6));
    }
}

} // namespace
