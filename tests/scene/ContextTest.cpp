// The contexts as values: their defaults, and what each kind of copy carries.

#include "Scene/core/OruSceneEventContext.h"
#include "Scene/core/OruSceneRenderContext.h"
#include "Scene/core/OruSceneSelectContext.h"
#include "tests/math/MathMatchers.h"

#include <gmock/gmock.h>

#include <utility>

using Kelvar::Math::BoundingBox;
using Kelvar::Math::Matrix;
using Kelvar::Math::Vector3;
using Kelvar::UI::Toolkit::ModifierFirst;

namespace {

void expectEqualInput(const OruSceneEventContext& a, const OruSceneEventContext& b)
{
    EXPECT_EQ(a.viewport, b.viewport);
    EXPECT_EQ(a.mouse.curpos(), b.mouse.curpos());
    EXPECT_EQ(a.mouse.isdown(OruMouse::ButtonView, ModifierFirst),
              b.mouse.isdown(OruMouse::ButtonView, ModifierFirst));
    EXPECT_EQ(a.key, b.key);
    EXPECT_EQ(a.keyModifiers, b.keyModifiers);
    EXPECT_EQ(a.modelView, b.modelView);
    EXPECT_EQ(a.projection, b.projection);
}

void expectEqual(const OruSceneEventContext& a, const OruSceneEventContext& b)
{
    expectEqualInput(a, b);
    EXPECT_EQ(a.viewpointName, b.viewpointName);
    EXPECT_EQ(a.center, b.center);
    EXPECT_EQ(a.boxZoom, b.boxZoom);
    EXPECT_EQ(a.upAxis, b.upAxis);
    EXPECT_EQ(a.bounds, b.bounds);
    EXPECT_EQ(a.zoomBounds, b.zoomBounds);
    EXPECT_EQ(a.fitFactor, b.fitFactor);
    EXPECT_EQ(a.tooltip, b.tooltip);
    EXPECT_EQ(a.noDraw, b.noDraw);
}

OruSceneEventContext filled()
{
    OruSceneEventContext ctx;
    ctx.viewport = OruOglViewport(1, 2, 3, 4);
    ctx.mouse.move(QPoint(3, 4), ModifierFirst);
    ctx.mouse.press(OruMouse::ButtonView, ModifierFirst, QPoint(5, 6));
    ctx.key = 'X';
    ctx.keyModifiers = 2;
    ctx.modelView = Matrix::scale(2.0f);
    ctx.projection = Matrix::scale(3.0f);
    ctx.viewpointName = "other";
    ctx.center = Vector3(1.0f, 2.0f, 3.0f);
    ctx.boxZoom = OruOglViewport(9, 9, -4, -5);
    ctx.upAxis = Vector3::X;
    ctx.bounds = BoundingBox(Vector3(), Vector3(1.0f, 1.0f, 1.0f));
    ctx.zoomBounds = BoundingBox(Vector3(), Vector3(2.0f, 2.0f, 2.0f));
    ctx.fitFactor = 0.5f;
    ctx.tooltip = "tip";
    ctx.noDraw = true;
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

TEST(OruSceneEventContextTest, Defaults)
{
    const OruSceneEventContext ctx;
    EXPECT_EQ(ctx.viewpointName, "viewpoint");
    EXPECT_EQ(ctx.upAxis, Vector3::Z);
    EXPECT_EQ(ctx.fitFactor, 0.9f);
    EXPECT_TRUE(ctx.tooltip.isNull());
    EXPECT_EQ(ctx.keyModifiers, 0u);
    EXPECT_EQ(ctx.key, 0);
    EXPECT_FALSE(ctx.noDraw);
    EXPECT_FALSE(ctx.bounds.defined() || ctx.zoomBounds.defined());
    EXPECT_EQ(ctx.boxZoom, OruOglViewport());
}

TEST(OruSceneEventContextTest, EveryCopyCarriesAllFieldsAndAMoveIsACopy)
{
    OruSceneEventContext source = filled();
    const OruSceneEventContext copy(source); // NOLINT: the copy is what is tested
    expectEqual(copy, filled());
    OruSceneEventContext assigned;
    EXPECT_EQ(&(assigned = source), &assigned);
    expectEqual(assigned, filled());
    const OruSceneEventContext moved(static_cast<OruSceneEventContext&&>(source));
    expectEqual(moved, filled());
    expectEqual(source, filled());
}

TEST(OruSceneRenderContextTest, TakesAnEventContextAndKeepsItsFocusWhenAssigned)
{
    const OruSceneEventContext first;
    const OruSceneEventContext second = filled();
    OruSceneRenderContext rc(first);
    expectTaken(rc, first);
    EXPECT_TRUE(rc.focused);
    rc.focused = false;
    EXPECT_EQ(&(rc = second), &rc);
    expectTaken(rc, second);
    EXPECT_FALSE(rc.focused);
}

TEST(OruSceneRenderContextTest, CopiesAndMovesCarryEverything)
{
    const OruSceneEventContext event = filled();
    OruSceneRenderContext source(event);
    source.focused = false;

    const OruSceneRenderContext copy(source);
    const OruSceneRenderContext moved(std::move(source));
    OruSceneRenderContext assigned{OruSceneEventContext()};
    assigned = copy;
    // The move constructor left the source's string with it, so this has something to move.
    OruSceneRenderContext moveAssigned{OruSceneEventContext()};
    moveAssigned = std::move(source); // NOLINT
    for (const OruSceneRenderContext* rc :
         {&copy, &moved, &std::as_const(assigned), &std::as_const(moveAssigned)}) {
        expectTaken(*rc, event);
        EXPECT_FALSE(rc->focused);
    }
    EXPECT_TRUE(source.tooltip.isNull()); // NOLINT
}

TEST(OruSceneSelectContextTest, PickWindowIsInvalidUntilSet)
{
    const OruSceneEventContext event = filled();
    const OruSceneSelectContext sc(event);
    expectTaken(sc, event);
    EXPECT_TRUE(sc.focused);
    EXPECT_EQ(sc.pickPoint, QPoint(0, 0));
    EXPECT_EQ(sc.pickSize, QSize(-1, -1));
}

} // namespace
