// The capture: what the image shows, and what it leaves behind in OpenGL and in the scene.

#include "contracts/core/OruDebugLogger.h"
#include "contracts/debug/logger.h"
#include "contracts/ogl/OruOglGl.h"
#include "tests/debug/RecordingSink.h"
#include "tests/scene/GlewStandIn.h"
#include "tests/scene/SceneFixture.h"
#include "tests/support/GlExtensions.h"

#include <algorithm>
#include <stdexcept>

using namespace kelvartest;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::HasSubstr;

namespace {

class CaptureGLTest : public SceneTest
{
protected:
    CaptureGLTest()
        : sink(std::make_shared<RecordingSink>())
    {
        oru::debug_logger::debuglogger().setSink(sink);
        probe.drawAction = [](const std::string& pass, const OruVisualization::DrawContext&) {
            if (pass == "draw3d") {
                drawTriangle();
            }
        };
    }
    ~CaptureGLTest() override { oru::debug_logger::debuglogger().setSink(nullptr); }

    void TearDown() override
    {
        EXPECT_LE(GlRecorder::instance().liveObjects(), 1) << "the glyphs of the text alone";
        SceneTest::TearDown();
    }

    /// An orange one, and a yellow one that it hides.
    static void drawTriangle()
    {
        glDisable(GL_LIGHTING);
        glBegin(GL_TRIANGLES);
        for (const float z : {0.0f, -0.5f}) {
            glColor3f(1.0f, 0.5f - z, 0.0f);
            glVertex3f(-0.6f, -0.6f, z);
            glVertex3f(0.7f, -0.5f, z);
            glVertex3f(0.1f, 0.8f, z);
        }
        glEnd();
    }

    OruSceneEventContext sized(const QSize& size) const
    {
        OruSceneEventContext other = ctx;
        other.viewport = OruOglViewport(0, 0, size.width(), size.height());
        return other;
    }

    static GLint state(GLenum name)
    {
        GLint value = 0;
        glGetIntegerv(name, &value);
        return value;
    }

    std::shared_ptr<RecordingSink> sink;
};

TEST_F(CaptureGLTest, ImageIsTheFrameOfAWindowOfThatSize)
{
    ctx.tooltip = QStringLiteral("captured");
    ctx.mouse.move(QPoint(30, 90), Kelvar::UI::Toolkit::ModifierNone);
    ctx.boxZoom = OruOglViewport(20, 20, 40, -15);
    for (const QSize& size : {QSize(160, 120), QSize(97, 61), QSize(400, 300)}) {
        SCOPED_TRACE(size.width());
        gl.makeCurrent();
        QImage image;
        ASSERT_TRUE(scene.drawGl(sized(size), image));
        EXPECT_EQ(image.size(), size);
        EXPECT_EQ(image.format(), QImage::Format_RGB888);

        GlContext window(size);
        OruScene other{QString(), QString(), QString()};
        Probe twin(other.group);
        twin.drawAction = probe.drawAction;
        other.render.visualizations.insert(&twin, true);
        OruSceneEventContext onScreen = sized(size);
        other.drawGl(onScreen);
        EXPECT_EQ(image, window.grab());
        other.render.visualizations.remove(&twin);
    }
    gl.makeCurrent();
    GlRecorder::instance().resetBalance();
}

TEST_F(CaptureGLTest, LeavesSceneContextAndOpenGlAsTheyWere)
{
    settle();
    const int objects = GlRecorder::instance().liveObjects();
    int captured = 0;
    probe.action = [&](const std::string&) {
        captured = std::max(captured, GlRecorder::instance().liveObjects() - objects);
    };
    glReadBuffer(GL_BACK);
    glPixelStorei(GL_PACK_ALIGNMENT, 2);
    const GLint drawBuffer = state(GL_DRAW_BUFFER);
    const GLint readBuffer = state(GL_READ_BUFFER);
    OruSceneEventContext other = sized({64, 48});
    other.bounds = Kelvar::Math::BoundingBox();
    const Kelvar::Math::Matrix view = Kelvar::Math::Matrix::scale(0.1f);
    other.modelView = view;
    QImage image;
    ASSERT_TRUE(scene.drawGl(other, image));
    EXPECT_THAT(probe.passes, ElementsAre("resize", "draw3d", "draw2d", "resize", "draw3d", "draw2d"));
    EXPECT_THAT(editor->calls, ElementsAre("begin", "end"));
    EXPECT_EQ(captured, 3) << "a framebuffer object and two renderbuffers";
    EXPECT_EQ(GlRecorder::instance().liveObjects(), objects);
    EXPECT_EQ(other.modelView, view);
    EXPECT_FALSE(other.bounds.defined());
    EXPECT_EQ(state(GL_DRAW_BUFFER), drawBuffer);
    EXPECT_EQ(state(GL_READ_BUFFER), readBuffer);
    EXPECT_EQ(state(GL_PACK_ALIGNMENT), 2);
    EXPECT_EQ(state(GL_FRAMEBUFFER_BINDING), 0);
    probe.passes.clear();
    ASSERT_TRUE(scene.drawGl(ctx, image));
    EXPECT_THAT(probe.passes, ElementsAre("draw3d", "draw2d", "draw3d", "draw2d")) << "the same size";
}

TEST_F(CaptureGLTest, BuffersAreBoundAndReadInTheirOrder)
{
    settle();
    OruSceneEventContext other = sized({64, 48});
    other.viewport.x = 5;
    other.viewport.y = 7;
    glDrawBuffer(GL_FRONT);
    QImage image;
    GlRecording recording;
    ASSERT_TRUE(scene.drawGl(other, image));
    std::vector<std::string> order = recording.finish();
    const auto aside = [](const std::string& line) {
        const bool passes = line == "draw3d" || line.rfind("storage", 0) == 0 || line.rfind("bind", 0) == 0;
        return !passes && line.rfind("glDrawBuffer", 0) != 0 && line.rfind("glRead", 0) != 0;
    };
    order.erase(std::remove_if(order.begin(), order.end(), aside), order.end());
    EXPECT_THAT(order, ElementsAre("bind target", "storage 0x1907", "storage 0x81a7", "glDrawBuffer(0x8ce0)",
                                   "draw3d", "glReadBuffer(0x8ce0)",
                                   "glReadPixels(0, 0, 64, 48, 0x1907, 0x1401, ...)", "bind window",
                                   "glDrawBuffer(0x404)", "draw3d"));
    glDrawBuffer(GL_BACK);
}

TEST_F(CaptureGLTest, WhatOpenGlRefusesLeavesTheImageAlone)
{
    settle();
    const struct
    {
        QSize size;
        std::set<std::string> missing;
    } rows[] = {
        {{0, 10}, {}},
        {{10, -1}, {}},
        {{1 << 20, 10}, {}},
        {{64, 48}, {"glBindFramebufferEXT"}},
        {{64, 48}, {"glIsRenderbufferEXT"}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.size.width());
        missingExtensions() = row.missing;
        sink->lines.clear();
        probe.passes.clear();
        QImage image(3, 3, QImage::Format_RGB888);
        image.fill(Qt::red);
        EXPECT_FALSE(scene.drawGl(sized(row.size), image));
        EXPECT_EQ(image.pixelColor(1, 1), QColor(Qt::red));
        EXPECT_TRUE(probe.passes.empty());
        EXPECT_EQ(sink->lines.size(), row.missing.empty() ? 1u : 0u);
        EXPECT_THAT(sink->lines,
                    Each(HasSubstr("unable to correctly initialize pbuffer/rbuffer extensions!")));
        EXPECT_EQ(state(GL_FRAMEBUFFER_BINDING), 0);
        EXPECT_EQ(gl.faults(), "");
        missingExtensions().clear();
        EXPECT_TRUE(scene.drawGl(sized({64, 48}), image)) << "it is tried anew each time";
    }
}

TEST_F(CaptureGLTest, TellsWhatGlewLacks)
{
    settle();
    QImage image;
    std::vector<::testing::Matcher<std::string>> messages;
    for (const std::string& name : GlewStandIn::functions()) {
        messages.push_back("E ensure failed: \"" + name +
                           "\" - bool __cdecl OruScene::drawGl(const class "
                           "OruSceneEventContext &,class QImage &)");
    }
    GlewStandIn::missing() = GlewStandIn::functions();
    EXPECT_FALSE(scene.drawGl(sized({64, 48}), image));
    EXPECT_THAT(sink->lines, ElementsAreArray(messages));
    GlewStandIn::missing() = {"glIsFramebufferEXT"};
    EXPECT_TRUE(scene.drawGl(sized({64, 48}), image)) << "not called by a capture";
    GlewStandIn::missing().clear();
    sink->lines.clear();
    GlewStandIn::failure() = 1;
    EXPECT_FALSE(scene.drawGl(sized({64, 48}), image));
    EXPECT_THAT(sink->lines, ElementsAre("E glewInit failed with: Missing GL version"));
    GlewStandIn::failure() = 0;
}

TEST_F(CaptureGLTest, ExceptionIsLoggedAndTheNextDrawComesBackFromTheSize)
{
    settle();
    const GLint drawBuffer = state(GL_DRAW_BUFFER);
    probe.action = [](const std::string& pass) {
        if (pass == "draw3d") {
            throw std::runtime_error("draw");
        }
    };
    QImage image;
    EXPECT_THROW(scene.drawGl(sized({64, 48}), image), std::runtime_error);
    EXPECT_THAT(sink->lines,
                ElementsAre(HasSubstr("failed to correctly render to the render buffer for a screen grab!")));
    EXPECT_EQ(state(GL_DRAW_BUFFER), drawBuffer);
    probe.action = nullptr;
    probe.passes.clear();
    scene.drawGl(ctx);
    EXPECT_THAT(probe.passes, ElementsAre("resize", "draw3d", "draw2d"));
}

TEST_F(CaptureGLTest, BeforeTheFirstDrawAndFromWithinOne)
{
    QImage image;
    ASSERT_TRUE(scene.drawGl(sized({32, 32}), image));
    EXPECT_EQ(image.size(), QSize(32, 32));
    EXPECT_EQ(image.pixelColor(16, 16), QColor(255, 128, 0));
    bool result = false;
    probe.action = [&](const std::string& pass) {
        if (pass == "draw2d") {
            QImage inner;
            result = scene.drawGl(sized({32, 32}), inner);
        }
    };
    scene.drawGl(ctx);
    EXPECT_TRUE(result) << "its draws were dropped, its image is without a scene";
}

} // namespace
