// The contexts as values: their defaults, and what each kind of copy carries.

#include "Scene/controller/OruSceneController.h"
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

TEST(OruSceneEventContextTest, StartsWithItsDefaultsAndCopiesEveryField)
{
    OruSceneEventContext ctx;
    EXPECT_EQ(ctx.viewpointName, "viewpoint");
    EXPECT_EQ(ctx.fitFactor, 0.9f);
    EXPECT_EQ(ctx.key, 0);
    EXPECT_EQ(ctx.keyModifiers, 0u);
    EXPECT_FALSE(ctx.noDraw || ctx.bounds.defined() || ctx.zoomBounds.defined());
    ctx = filled();
    ctx.key = 'X';
    ctx.keyModifiers = 2;
    ctx.upAxis = Vector3(0.0f, 1.0f, 0.0f);
    ctx.bounds = Kelvar::Math::BoundingBox(Vector3(), Vector3(1.0f, 1.0f, 1.0f));
    ctx.zoomBounds = Kelvar::Math::BoundingBox(Vector3(), Vector3(2.0f, 2.0f, 2.0f));
    ctx.fitFactor = 0.5f;
    ctx.noDraw = true;
    const OruSceneEventContext copy(ctx);
    expectTaken(copy, ctx);
    EXPECT_EQ(copy.viewpointName, "other");
    EXPECT_EQ(copy.key, 'X');
    EXPECT_EQ(copy.keyModifiers, 2u);
    EXPECT_EQ(copy.upAxis, ctx.upAxis);
    EXPECT_EQ(copy.bounds, ctx.bounds);
    EXPECT_EQ(copy.zoomBounds, ctx.zoomBounds);
    EXPECT_EQ(copy.fitFactor, 0.5f);
    EXPECT_TRUE(copy.noDraw);
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
    const OruSceneSelectContext sc = second;
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

TEST(OruSceneControllerTest, RecordsMoveTheirHandlerAndCopyTheRest)
{
    const boost::shared_ptr<int> alive(new int);
    using Record = OruSceneController::CurrentHitRecord;
    Record source;
    EXPECT_FALSE(source.hasHandler());
    source.hit.name = 7;
    source.handler =
        boost::shared_ptr<IOruVisEventHandler>(alive, static_cast<IOruVisEventHandler*>(nullptr));
    EXPECT_FALSE(source.hasHandler()) << "alive, but nobody is there";
    const Record copy(source);
    EXPECT_EQ(copy.hit.name, 7u);
    Record moved(std::move(source));
    EXPECT_FALSE(moved.handler.expired());
    EXPECT_TRUE(source.handler.expired()); // NOLINT
    EXPECT_EQ(source.hit.name, 7u);
}

} // namespace
