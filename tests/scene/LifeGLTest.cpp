// Scenes and contexts that come and go in one process. KELVAR_LIFE_CONTEXTS sets how many contexts do.

#include "tests/scene/SceneFixture.h"

#include <cstdlib>

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
    for (int i = 0; i < 1000; ++i) {
        liveOnce(size);
        ASSERT_EQ(GlRecorder::instance().liveObjects(), objects) << i;
    }
    // The driver's own caches come and go with what is drawn, so the memory is watched without a draw.
    const std::size_t before = mallinfo2().uordblks;
    for (int i = 0; i < 1000; ++i) {
        OruScene scene{QString(), QString(), QString()};
    }
    EXPECT_LT(mallinfo2().uordblks, before + 256 * 1000) << "a scene holds many times its share";
    EXPECT_EQ(gl.faults(), "");
}

TEST(LifeGLTest, ContextsAreLostAndMadeAgain)
{
    const QSize size(64, 48);
    const char* const wanted = std::getenv("KELVAR_LIFE_CONTEXTS");
    const int contexts = wanted ? std::atoi(wanted) : 30;
    for (int i = 0; i < contexts; ++i) {
        GlContext gl(size);
        const int objects = GlRecorder::instance().liveObjects();
        liveOnce(size);
        ASSERT_EQ(GlRecorder::instance().liveObjects(), objects) << i;
        ASSERT_EQ(gl.faults(), "") << i;
    }
}

} // namespace
