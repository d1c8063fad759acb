// Scenes and contexts that come and go in one process.

#include "tests/scene/SceneFixture.h"

#include <malloc.h>

using namespace kelvartest;

namespace {

/// A scene with text and an image.
void liveOnce(const QSize& size)
{
    OruScene scene{QString(), QStringLiteral(KELVAR_RESOURCES), QString()};
    scene.find(QStringLiteral("render/visualization/kelvar logo"))
        ->setValue(QStringLiteral("visible"), QStringLiteral("true"));
    OruSceneEventContext ctx;
    ctx.viewport.width = size.width();
    ctx.viewport.height = size.height();
    ctx.tooltip = QStringLiteral("alive");
    scene.drawGl(ctx);
    EXPECT_GE(GlRecorder::instance().liveObjects(), 2) << "logo and glyphs";
}

TEST(LifeGLTest, ThousandScenesLeaveNothingBehind)
{
    const QSize size(64, 48);
    GlContext gl(size);
    const int objects = GlRecorder::instance().liveObjects();
    std::size_t warm = 0;
    for (int i = 0; i < 1000; ++i) {
        liveOnce(size);
        ASSERT_EQ(GlRecorder::instance().liveObjects(), objects) << i;
        if (i == 100) {
            warm = mallinfo2().uordblks;
        }
    }
    // The driver's own caches come and go by a third of this; a scene holds a hundred times its share.
    EXPECT_LT(mallinfo2().uordblks, warm + (std::size_t(1) << 20));
    EXPECT_EQ(gl.faults(), "");
}

TEST(LifeGLTest, ContextsAreLostAndMadeAgain)
{
    const QSize size(64, 48);
    for (int i = 0; i < 200; ++i) {
        GlContext gl(size);
        const int objects = GlRecorder::instance().liveObjects();
        liveOnce(size);
        ASSERT_EQ(GlRecorder::instance().liveObjects(), objects) << i;
        ASSERT_EQ(gl.faults(), "") << i;
    }
}

} // namespace
