// The contexts as values: their defaults, and what each kind of copy carries.

#include "Scene/core/OruSceneEventContext.h"
#include "Scene/core/OruSceneRenderContext.h"
#include "Scene/core/OruSceneSelectContext.h"
#include "tests/math/MathMatchers.h"

#include <gmock/gmock.h>

#include <utility>

using Kelvar::Math::Matrix;
using Kelvar::Math::Vector3;
using Kelvar::UI::Toolkit::ModifierFirst;

namespace {

OruSceneEventContext filled()
{
    OruSceneEventContext ctx;
    ctx.viewport = OruOglViewport(1, 2, 3, 4);
    ctx.mouse.move(QPoint(3, 4), ModifierFirst);
    ctx.modelView = Matrix::scale(2.0f);
    ctx.projection = Matrix::scale(3.0f);
    ctx.viewpointName = "other";
    ctx.center = Vector3(1.0f, 2.0f, 3.0f);
    ctx.boxZoom = OruOglViewport(9, 9, -4, -5);
    ctx.tooltip = "tip";
    return ctx;
}

void expectTaken(const OruSceneRenderContext& rc, const OruSceneEventContext& ctx)
{
    EXPECT_EQ(rc.viewport, ctx.viewport);
    EXPECT_EQ(rc.cursor, ctx.mouse.curpos());
    EXPECT_EQ(rc.center, ctx.center);
    EXPECT_EQ(rc.modelView, ctx.modelView);
    EXPECT_EQ(rc.projection, ctx.projection);
    EXPECT_EQ(rc.tooltip, ctx.tooltip);
    EXPECT_EQ(rc.boxZoom, ctx.boxZoom);
}

TEST(OruSceneEventContextTest, MoveIsACopy)
{
    OruSceneEventContext source = filled();
    OruSceneEventContext assigned;
    const OruSceneEventContext moved(std::move(source)); // NOLINT
    assigned = std::move(source);                        // NOLINT
    for (const OruSceneEventContext* ctx : {&moved, &std::as_const(assigned), &std::as_const(source)}) {
        EXPECT_EQ(ctx->viewpointName, "other");
        EXPECT_EQ(ctx->tooltip, "tip");
        EXPECT_EQ(ctx->modelView, filled().modelView);
    }
}

TEST(OruSceneRenderContextTest, TakesAnEventContextAndKeepsItsFocusWhenAssigned)
{
    const OruSceneEventContext first;
    EXPECT_TRUE(first.tooltip.isNull());
    EXPECT_EQ(first.upAxis, Vector3::Z);
    const OruSceneEventContext second = filled();
    OruSceneRenderContext rc(first);
    expectTaken(rc, first);
    EXPECT_TRUE(rc.focused);
    rc.focused = false;
    EXPECT_EQ(&(rc = second), &rc);
    expectTaken(rc, second);
    EXPECT_FALSE(rc.focused);
    const OruSceneSelectContext sc(second);
    expectTaken(sc, second);
    EXPECT_EQ(sc.pickSize, QSize(-1, -1));
}

TEST(OruSceneRenderContextTest, MoveConstructorCopiesAndMoveAssignmentTakes)
{
    const OruSceneEventContext event = filled();
    OruSceneRenderContext source(event);
    source.focused = false;
    const OruSceneRenderContext moved(std::move(source));
    OruSceneRenderContext assigned{OruSceneEventContext()};
    assigned = std::move(source); // NOLINT: it still has its string
    for (const OruSceneRenderContext* rc : {&moved, &std::as_const(assigned)}) {
        expectTaken(*rc, event);
        EXPECT_FALSE(rc->focused);
    }
    EXPECT_TRUE(source.tooltip.isNull()); // NOLINT
}

} // namespace
