// Every callback of a visualization, a handler, a host's controller and an editor throws once, at every place
// from which the scene calls it. What has to hold then holds, and after the next release the scene does all
// as if nothing had happened.

#include "contracts/core/OruDebugLogger.h"
#include "contracts/debug/logger.h"
#include "contracts/ogl/OruOglGl.h"
#include "tests/debug/RecordingSink.h"
#include "tests/scene/DispatchFixture.h"

#include <sstream>
#include <string>

using namespace kelvartest;
using Kelvar::Math::Matrix;
using Kelvar::UI::Toolkit::ModifierNone;

namespace {

struct Fault
{};

class FaultInjectionGLTest : public DispatchTest
{
protected:
    FaultInjectionGLTest()
    {
        oru::debug_logger::debuglogger().setSink(std::make_shared<RecordingSink>());
        probe.action = [this](const std::string& pass) { onCall(pass, true); };
        probe.boundsAction = [this] { onCall("bounds"); };
        probe.drawAction = [](const std::string& pass, const OruVisualization::DrawContext&) {
            pass == "draw2d" ? glRecti(100, 10, 130, 30) : glRectf(-0.4f, -0.3f, 0.3f, 0.5f);
        };
        editor->action = [this](const std::string& call) { onCall(call.substr(0, call.find(' '))); };
        log.whim = [this](const std::string& call) {
            onCall(call);
            return log.yes.count(call) != 0;
        };
    }
    ~FaultInjectionGLTest() override { oru::debug_logger::debuglogger().setSink(nullptr); }

    void onCall(const std::string& call, bool inPass = false)
    {
        calls += (calls.empty() ? "" : " ") + call;
        openSessions -= call == "end";
        if (--callsToFault == 0) {
            if (inPass) {
                glPushAttrib(OruOglAllAttribBits);
                glMatrixMode(GL_PROJECTION);
                glPushMatrix();
                glLoadIdentity();
                glEnable(GL_SCISSOR_TEST);
            }
            throw Fault();
        }
        openSessions += call == "begin";
    }

    // What the host notes ahead of an event, and the event.
    OruSceneEventContext& pressed(OruMouse::Button button, char over)
    {
        under = over;
        ctx.mouse.press(button, ModifierNone, QPoint(80, 60));
        return ctx;
    }
    OruSceneEventContext& released(OruMouse::Button button, char over)
    {
        under = over;
        ctx.mouse.release(button, ModifierNone, QPoint(120, 100));
        return ctx;
    }
    OruSceneEventContext& moved(char over)
    {
        under = over;
        ctx.mouse.move(ctx.mouse.curpos() + QPoint(30, 20), ModifierNone);
        return ctx;
    }
    void press(OruMouse::Button button, char over) { scene.mousePress(pressed(button, over)); }
    void release(OruMouse::Button button, char over) { scene.mouseRelease(released(button, over)); }
    void move(char over) { scene.mouseMove(moved(over)); }
    void turn() { ctx.modelView = Matrix::scale(2.0f); }
    void capture()
    {
        OruSceneEventContext other = ctx;
        other.viewport = OruOglViewport(0, 0, 90, 70);
        scene.drawGl(other, image);
    }
    void resetView()
    {
        ctx.modelView = Matrix();
        ctx.tooltip.clear();
        scene.setViewpoint("viewpoint", Matrix());
    }

    /// What a scene in good order shows in all that a user does; leaves in `calls` what it says.
    std::vector<QImage> doAll()
    {
        // Ends what is special about the last hover and the last size.
        resetView();
        ctx.mouse.move(QPoint(30, 60), ModifierNone);
        ctx.tooltip = "tip";
        scene.drawGl(ctx);
        const QImage labelled = gl.grab();
        ctx.tooltip.clear();
        move('A');
        calls.clear();
        log.yes = {"A.drag"};
        move('B');
        press(pick, 'A');
        move('A');
        release(pick, 'B');
        scene.mouseClick(ctx);
        log.yes.clear();
        scene.drawGl(ctx);
        const QImage frame = gl.grab();
        capture();
        return {labelled, frame, image};
    }

    /// A place from which the scene calls out.
    struct Site
    {
        const char* name;
        std::function<void()> before, event;
        int held;             ///< button whose press is open afterwards; 0: none
        bool grabbed;         ///< an object is held when it happens
        const char* expected; ///< the calls in order
    };

    std::function<void()> send(bool (OruScene::*event)(OruSceneEventContext&))
    {
        return [this, event] { (scene.*event)(ctx); };
    }

    /// Throws at one call of an event, counted from 1; 0: at none.
    void runSite(const Site& site, int faultAt)
    {
        log.text.clear();
        resetView();
        site.before();
        probe.touch();
        calls.clear();
        callsToFault = faultAt;
        site.event();
    }

    void checkWhatIsKept(const Site& site, const std::string& fault)
    {
        calls.clear();
        under = '-';
        scene.drawGl(ctx);
        const bool sessionIsOpen = site.held != 0 && fault != "begin";
        EXPECT_EQ(calls.find("begin") == std::string::npos, sessionIsOpen) << calls;
        move('-');
        EXPECT_EQ(calls.find("A.drag") != std::string::npos, site.grabbed && fault != "end") << calls;
    }

    void endGesture(const Site& site)
    {
        const auto button = static_cast<OruMouse::Button>(site.held ? site.held : pick);
        if (!site.held && site.grabbed) {
            press(button, '-');
        }
        if (site.held || site.grabbed) {
            release(button, '-');
        }
    }

    QImage image;
    std::string calls;
    int callsToFault = 0;
    int openSessions = 0;

    static constexpr OruMouse::Button pick = OruMouse::ButtonPick;
    static constexpr OruMouse::Button menu = OruMouse::ButtonContext;
    const std::vector<Site> sites = {
        {"draw", [] {}, [this] { scene.drawGl(ctx); }, 0, false,
         "begin update resize bounds draw3d draw2d end"},
        {"capture", [] {}, [this] { capture(); }, 0, false,
         "begin update resize resize bounds draw3d draw2d resize draw3d draw2d end"},
        {"press", [this] { pressed(pick, 'A'); }, send(&OruScene::mousePress), pick, false,
         "begin update resize bounds select3d select2d"},
        {"press for a menu", [this] { move('B'), pressed(menu, 'A'); }, send(&OruScene::mousePress), menu,
         false, "begin update resize bounds select3d select2d B.leave host.leave A.enter host.enter"},
        {"hover", [this] { move('B'), turn(), under = 'A'; }, send(&OruScene::mouseMove), 0, false,
         "begin update resize bounds select3d select2d B.leave host.leave A.enter host.enter edit end"},
        {"drag", [this] { press(pick, 'A'), moved('A'); }, send(&OruScene::mouseMove), pick, true,
         "A.drag host.drag edit"},
        {"drop", [this] { press(pick, 'A'), released(pick, 'B'); }, send(&OruScene::mouseRelease), 0, true,
         "update resize bounds select3d select2d A.drop host.drop A.release host.release end"},
        {"zoom box", [this] { press(menu, '-'), move('-'), released(menu, '-'); },
         send(&OruScene::mouseRelease), 0, false, "edit end"},
        {"click", [this] { press(pick, 'A'), release(pick, 'A'); }, send(&OruScene::mouseClick), 0, false,
         "begin update resize bounds select3d select2d A.click host.click end"},
        {"wheel", [this] { ctx.mouse.wheel(1, ModifierNone, QPoint(120, 100)); }, send(&OruScene::mouseWheel),
         0, false, "begin edit end"},
        {"key", [this] { ctx.key = 'I'; }, send(&OruScene::keyPress), 0, false, "begin edit end"},
        {"double click", [this] { turn(); }, send(&OruScene::mouseDoubleClick), 0, false, ""},
        {"key release", [this] { turn(); }, send(&OruScene::keyRelease), 0, false, ""},
        {"release without a press", [this] { turn(); }, send(&OruScene::mouseRelease), 0, false, ""},
        {"focus in", [this] { turn(); }, send(&OruScene::focusIn), 0, false, "begin edit end"},
        {"focus out", [this] { turn(); }, send(&OruScene::focusOut), 0, false, "begin edit end"},
        {"enter", [this] { turn(); }, send(&OruScene::mouseEnter), 0, false, "begin edit end"},
        {"leave", [this] { turn(); }, send(&OruScene::mouseLeave), 0, false, "begin edit end"},
    };
};

TEST_F(FaultInjectionGLTest, AnyCallMayThrowAnywhere)
{
    const std::vector<QImage> good = doAll();
    ASSERT_FALSE(image.isNull());
    const std::string goodCalls = calls;
    for (const Site& site : sites) {
        SCOPED_TRACE(site.name);
        runSite(site, 0);
        EXPECT_EQ(calls, site.expected);
        std::istringstream sequence(calls);
        endGesture(site);
        std::string call;
        for (int i = 1; sequence >> call; ++i) {
            SCOPED_TRACE(::testing::Message() << "call " << i << ", " << call);
            EXPECT_THROW(runSite(site, i), Fault);
            EXPECT_EQ(gl.faults(), "");
            checkWhatIsKept(site, call);
            endGesture(site);
            EXPECT_EQ(openSessions, 0);
            EXPECT_TRUE(doAll() == good);
            EXPECT_EQ(calls, goodCalls);
            EXPECT_EQ(gl.faults(), "");
        }
    }
}

} // namespace
