// The draw cycle: the order of the OpenGL calls, what a frame leaves behind, and what survives an exception.

#include "Scene/core/OruSceneRenderContext.h"
#include "Scene/core/OruSceneSelectContext.h"
#include "contracts/ogl/OruOglFunctions.h"
#include "contracts/ogl/OruOglGl.h"
#include "tests/scene/SceneFixture.h"

#include <algorithm>
#include <limits>
#include <map>
#include <stdexcept>

using namespace kelvartest;
using Kelvar::Math::Matrix;
using Kelvar::Math::Vector3;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

namespace {

/// A recording, a line each, in the words of the sequences below: what the framework's helpers call gets one
/// word each, the list's queries of stack depths are left out, and so is what setLighting does, but for its
/// place.
std::string essence(const std::vector<std::string>& recorded)
{
    static const std::map<std::string, std::string> words = {
        {"glOrtho(-0.515625, 159.484, -0.515625, 119.484, -1, 1)", "ortho"},
        {"glGetIntegerv(0xba2)", "viewport?"},
        {"glGetFloatv(0xba6)", "model view?"},
        {"glColor4ub(255, 255, 255, 255)", "white"},
        {"glColor4ub(128, 128, 128, 255)", "gray"},
    };
    std::string result;
    bool inLights = false;
    for (const std::string& line : recorded) {
        const auto word = words.find(line);
        inLights = inLights && line != "draw3d";
        if (inLights || (line.rfind("glGetIntegerv", 0) == 0 && word == words.end())) {
            continue;
        }
        const bool matrix = line.rfind("glLoadMatrixf", 0) == 0;
        result += (word != words.end() ? word->second : matrix ? "load matrix" : line) + '\n';
        inLights = line == "glEnable(GL_POLYGON_OFFSET_FILL)";
        result += inLights ? "lights\n" : "";
    }
    return result;
}

/// The sequence as a recording shows it: a line for each call.
std::string lines(const std::string& sequence)
{
    return QString::fromStdString(sequence).replace("; ", "\n").toStdString();
}

const std::string frameOpen =
    "glPushAttrib(0xfffff); glMatrixMode(GL_PROJECTION); glPushMatrix(); glMatrixMode(GL_MODELVIEW); "
    "glPushMatrix(); ";
const std::string frameClose =
    "glMatrixMode(GL_PROJECTION); glPopMatrix(); glMatrixMode(GL_MODELVIEW); glPopMatrix(); "
    "glPopAttrib(); ";
const std::string unchangedUpdate = "glPushAttrib(0xfffff); glPopAttrib(); ";
const std::string changedUpdate = "glPushAttrib(0xfffff); update; resize; glPopAttrib(); ";
const std::string resizePass = "glPushAttrib(0xfffff); resize; glPopAttrib(); ";
const std::string viewing =
    "glViewport(0, 0, 160, 120); glMatrixMode(GL_MODELVIEW); load matrix; glMatrixMode(GL_PROJECTION); "
    "load matrix; glMatrixMode(GL_MODELVIEW); ";
const std::string clearing = "glClearColor(0, 0, 0, 1); glClearStencil(0); glClear(0x4100); ";
const std::string pass3d =
    "glPushAttrib(0xfffff); glEnable(GL_DEPTH_TEST); glDepthFunc(GL_LESS); glEnable(GL_NORMALIZE); "
    "glEnable(GL_CULL_FACE); glColorMaterial(GL_FRONT_AND_BACK, GL_DIFFUSE); "
    "glEnable(GL_COLOR_MATERIAL); glShadeModel(GL_SMOOTH); glLightModeli(GL_LIGHT_MODEL_TWO_SIDE, 1); "
    "glPolygonOffset(1, 1); glEnable(GL_POLYGON_OFFSET_FILL); lights; draw3d; glPopAttrib(); ";
const std::string pass2d =
    "glPushAttrib(0xfffff); glDisable(GL_DEPTH_TEST); glDisable(GL_NORMALIZE); glDisable(GL_CULL_FACE); "
    "glDisable(GL_LIGHTING); glDisable(GL_POLYGON_OFFSET_FILL); glEnable(GL_COLOR_MATERIAL); "
    "glShadeModel(GL_SMOOTH); glMatrixMode(GL_PROJECTION); glLoadIdentity(); glMatrixMode(GL_MODELVIEW); "
    "glLoadIdentity(); ortho; model view?; draw2d; glPopAttrib(); ";
const std::string strip =
    "glBegin(GL_LINE_STRIP); glVertex2i(0, 0); glVertex2i(159, 0); glVertex2i(159, 119); "
    "glVertex2i(0, 119); glVertex2i(0, 0); glEnd(); ";
const std::string focusOpen =
    "glMatrixMode(GL_PROJECTION); glPushMatrix(); glLoadIdentity(); viewport?; ortho; "
    "glMatrixMode(GL_MODELVIEW); glPushMatrix(); glLoadIdentity(); glPushAttrib(0x2001); "
    "glDisable(GL_LIGHTING); glDisable(GL_DEPTH_TEST); ";
const std::string focusClose = "glPopAttrib(); glPopMatrix(); glMatrixMode(GL_PROJECTION); glPopMatrix(); "
                               "glMatrixMode(GL_MODELVIEW); ";

std::string focusFrame(bool stippled)
{
    return focusOpen + (stippled ? "glEnable" : "glDisable") + "(GL_LINE_STIPPLE); white; " +
           "glLineStipple(1, 0xaaaa); " + strip + "gray; glLineStipple(1, 0x5555); " + strip + focusClose;
}

/// What each frame that shows something does in the end.
const std::string drawing =
    viewing + clearing + pass3d + pass2d + focusFrame(false) + "glFinish(); " + frameClose;

class FrameGLTest : public SceneTest
{
protected:
    /// The calls of one run of `operation`.
    static std::string calls(const std::function<void()>& operation)
    {
        GlRecording recording;
        operation();
        return essence(recording.finish());
    }
    std::string drawCalls()
    {
        return calls([this] { scene.drawGl(ctx); });
    }
};

TEST_F(FrameGLTest, FirstFrameDoesAllAndLaterOnesWhatHasChanged)
{
    EXPECT_EQ(drawCalls(), lines(frameOpen + changedUpdate + resizePass + drawing));
    EXPECT_EQ(drawCalls(), lines(frameOpen + unchangedUpdate + drawing));
    probe.string().setValue(QStringLiteral("anything"), 1);
    EXPECT_EQ(drawCalls(), lines(frameOpen + changedUpdate + drawing));
    ctx.noDraw = true;
    EXPECT_EQ(drawCalls(), lines(frameOpen + unchangedUpdate + viewing + frameClose));
    OruSceneRenderContext rc(ctx);
    rc.focused = false;
    EXPECT_EQ(calls([&] { OruScene::setViewing(rc), scene.render.draw(rc); }),
              lines(viewing + pass3d + pass2d + focusFrame(true) + "glFinish(); "));
}

TEST_F(FrameGLTest, AnEndingSceneClearsTheFrame)
{
    auto other = std::make_unique<OruScene>(QString(), QString(), QString());
    EXPECT_THAT(calls([&] { other.reset(); }), HasSubstr(lines(clearing)));
}

TEST_F(FrameGLTest, BandIsDrawnInItsOrder)
{
    ctx.boxZoom = {40, 30, -6, 8};
    EXPECT_THAT(drawCalls(),
                HasSubstr(lines("glLoadIdentity(); glPushAttrib(0x4); glColor4ub(255, 255, 255, 17); "
                                "glLineWidth(2); glEnable(0xbf2); glLogicOp(0x1506); glBegin(0x7); "
                                "glVertex2i(34, 30); glVertex2i(40, 30); glVertex2i(40, 38); "
                                "glVertex2i(34, 38); glEnd(); glDisable(0xbf2); glPopAttrib(); ")));
    ctx.boxZoom = {std::numeric_limits<int>::max() - 1, 0, 5, std::numeric_limits<int>::min()};
    EXPECT_THAT(drawCalls(),
                HasSubstr(lines("glVertex2i(2147483646, -2147483648); glVertex2i(2147483647, -2147483648); "
                                "glVertex2i(2147483647, -1); glVertex2i(2147483646, -1); ")));
}

TEST_F(FrameGLTest, OverlaysComeInTheirOrder)
{
    ctx.boxZoom = {40, 30, -6, 8};
    ctx.tooltip = QStringLiteral("tip");
    scene.render.string().setValue(QStringLiteral("textInfo"), true);
    const std::string recorded = drawCalls();
    std::vector<std::size_t> places;
    for (const char* mark : {"draw2d", "glColor4ub(255, 255, 225, 255)", "glLogicOp", "GL_LINE_STRIP",
                             "glColor4ub(192, 192, 192, 255)", "glFinish"}) {
        places.push_back(recorded.find(mark));
        EXPECT_NE(places.back(), std::string::npos) << mark;
    }
    EXPECT_TRUE(std::is_sorted(places.begin(), places.end())) << "tooltip, band, frame, text";
}

TEST_F(FrameGLTest, SelectionPassInItsOrder)
{
    settle();
    OruSceneSelectContext sc(ctx);
    const std::string selection =
        "glClearColor(1, 1, 1, 1); glClearStencil(0); glClear(0x4100); glPushAttrib(0xfffff); "
        "glEnable(GL_DEPTH_TEST); glDisable(GL_NORMALIZE); glDisable(GL_CULL_FACE); "
        "glDisable(GL_COLOR_MATERIAL); glShadeModel(GL_FLAT); glDisable(GL_LIGHTING); "
        "glDisable(GL_POLYGON_OFFSET_FILL); select3d; glDisable(GL_DEPTH_TEST); glMatrixMode(GL_PROJECTION); "
        "glLoadIdentity(); glMatrixMode(GL_MODELVIEW); glLoadIdentity(); ortho; model view?; select2d; "
        "glPopAttrib(); glFinish(); ";
    EXPECT_EQ(calls([&] { scene.render.select(sc); }), lines(selection));
}

TEST_F(FrameGLTest, ViewportsWithoutAreaMakeNoCall)
{
    settle();
    for (const QSize& size : {QSize(0, 10), QSize(10, 0), QSize(10, -3), QSize(-1, -1)}) {
        SCOPED_TRACE(size.width() * 1000 + size.height());
        ctx.viewport = {0, 0, size.width(), size.height()};
        const OruSceneRenderContext rc(ctx);
        const OruSceneSelectContext sc(ctx);
        EXPECT_THAT(calls([&] { scene.render.update(rc); }), IsEmpty());
        EXPECT_THAT(calls([&] { scene.render.resize(rc); }), IsEmpty());
        EXPECT_THAT(calls([&] { scene.render.draw(rc); }), IsEmpty());
        EXPECT_THAT(calls([&] { EXPECT_EQ(scene.render.select(sc).size(), 0u); }), IsEmpty());
        scene.drawGl(ctx);
        EXPECT_EQ(gl.faults(), "");
    }
}

TEST_F(FrameGLTest, ContextsOfThePasses)
{
    Matrix turned = Matrix::rotate(Vector3(0, 0, 1), 30.0f);
    ASSERT_TRUE(scene.setViewpoint(ctx.viewpointName, turned));
    std::map<std::string, std::pair<Matrix, Matrix>> seen;
    probe.drawAction = [&](const std::string& pass, const OruVisualization::DrawContext& dc) {
        seen[pass] = {dc.modelView, dc.projection};
        EXPECT_EQ(dc.editor, editor) << pass;
        EXPECT_EQ(dc.viewport.width, 160) << pass;
        EXPECT_EQ(dc.format.significantDigits(), 3) << pass;
        EXPECT_TRUE(pass != "draw3d" || dc.text.color() == QColor(Qt::white)) << "cleared with the frame";
        dc.text.setColor(Qt::red);
    };
    scene.render.significantDigits.setValue(3);
    // A frame sends two resizes; the one that the new viewport asks for comes last.
    ctx.modelView = Matrix::scale(2.0f);
    scene.drawGl(ctx);
    EXPECT_EQ(seen["update"].first, Matrix::scale(2.0f)) << "an update sees the view of the frame before";
    EXPECT_EQ(seen["resize"].first, Matrix::Identity);
    EXPECT_EQ(seen["draw3d"].first, turned);
    EXPECT_NE(seen["draw3d"].second, Matrix::Identity);
    EXPECT_EQ(seen["draw2d"].second, Matrix::Identity);
    const auto edge = static_cast<float>(-0.5 - OruOglOffCenter);
    const Vector3 corner = seen["draw2d"].first.transform(Vector3(edge, edge, 0.0f));
    EXPECT_NEAR(corner.x, -1.0f, 1e-6f);
    EXPECT_NEAR(corner.y, -1.0f, 1e-6f);
}

TEST_F(FrameGLTest, WhatAFrameWritesIntoItsContext)
{
    probe.box = Kelvar::Math::BoundingBox(Vector3(0, 0, 0), Vector3(2, 4, 6));
    const Matrix own = Matrix::scale(0.25f);
    ctx.viewpointName.clear();
    ctx.modelView = own;
    ctx.projection = Matrix::scale(7.0f);
    ctx.noDraw = true;
    scene.drawGl(ctx);
    EXPECT_EQ(ctx.modelView, own) << "no viewpoint name, no change of the view";
    EXPECT_EQ(ctx.projection, Matrix::scale(7.0f));
    EXPECT_EQ(ctx.bounds.max().z, 6.0f);
    EXPECT_EQ(ctx.center.y, 2.0f);
    ctx.viewpointName = QStringLiteral("viewpoint");
    scene.drawGl(ctx);
    EXPECT_EQ(ctx.modelView, Matrix::Identity) << "the stored view is the truth";
}

TEST_F(FrameGLTest, DrawFromWithinADrawIsDropped)
{
    settle();
    int inner = 0;
    probe.action = [&](const std::string& pass) {
        if (pass == "draw3d") {
            ++inner;
            OruSceneEventContext other = ctx;
            EXPECT_THAT(calls([&] { scene.drawGl(other); }), IsEmpty());
        }
    };
    scene.drawGl(ctx);
    EXPECT_EQ(inner, 1);
    EXPECT_THAT(editor->calls, ElementsAre("begin", "end"));
    editor->action = [&](const std::string& call) {
        if (call == "end" && inner == 2) {
            scene.drawGl(ctx);
        }
    };
    scene.drawGl(ctx);
    EXPECT_EQ(inner, 3) << "the end of a session lies outside";
}

TEST_F(FrameGLTest, TheFirstExceptionIsTheOneThatTheHostSees)
{
    settle();
    probe.action = [](const std::string& pass) {
        if (pass == "draw3d") {
            throw std::runtime_error("draw");
        }
    };
    editor->action = [](const std::string& call) {
        if (call == "end") {
            throw std::logic_error("end");
        }
    };
    EXPECT_THROW(scene.drawGl(ctx), std::runtime_error);
}

TEST_F(FrameGLTest, EditorChangedWithinASessionHearsTheEnd)
{
    settle();
    boost::shared_ptr<NotingEditor> second(new NotingEditor);
    scene.mousePress(ctx);
    scene.render.setCustomEditor(second);
    scene.mouseRelease(ctx);
    EXPECT_THAT(editor->calls, ElementsAre("begin"));
    EXPECT_THAT(second->calls, ElementsAre("end"));
}

} // namespace
