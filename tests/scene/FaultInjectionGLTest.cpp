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

/// Shows something in both passes, and has its bounds asked for like the other callbacks.
class LoudProbe : public Probe
{
public:
    explicit LoudProbe(OruModifiedGroup& modifiedGroup)
        : Probe(modifiedGroup)
    {
        drawAction = [](const std::string& pass, const DrawContext&) {
            const bool flat = pass == "draw2d";
            flat ? glRecti(100, 10, 130, 30) : glRectf(-0.4f, -0.3f, 0.3f, 0.5f);
        };
    }

    Kelvar::Math::BoundingBox bounds() const override
    {
        action("bounds");
        return box;
    }
};

class FaultInjectionGLTest : public DispatchTest
{
protected:
    FaultInjectionGLTest()
    {
        oru::debug_logger::debuglogger().setSink(std::make_shared<RecordingSink>());
        loud.action = [this](const std::string& call) { onCall(call, call != "bounds"); };
        editor->action = [this](const std::string& call) { onCall(call.substr(0, call.find(' '))); };
        for (const char* who : {"A", "B", "host"}) {
            for (const char* call : {".enter", ".leave", ".drag", ".drop", ".release", ".click"}) {
                listen(std::string(who) + call);
            }
        }
        loud.rename("loud");
        scene.render.visualizations.insert(&loud, true);
    }
    ~FaultInjectionGLTest() override { oru::debug_logger::debuglogger().setSink(nullptr); }

    void listen(const std::string& call)
    {
        log.reactions[call] = [this, call] {
            listen(call); // a reaction runs once
            onCall(call);
        };
    }

    void onCall(const std::string& call, bool inPass = false)
    {
        calls += (calls.empty() ? "" : " ") + call;
        openSessions -= call == "end";
        if (--callsToFault == 0) {
            if (inPass) {
                disturbGl();
            }
            throw Fault();
        }
        openSessions += call == "begin";
    }

    static void disturbGl()
    {
        glPushAttrib(OruOglAllAttribBits);
        glMatrixMode(GL_PROJECTION);
        glPushMatrix();
        glLoadIdentity();
        glEnable(GL_SCISSOR_TEST);
    }

    void press(OruMouse::Button button, char over)
    {
        under = over;
        ctx.mouse.press(button, ModifierNone, QPoint(80, 60));
        scene.mousePress(ctx);
    }
    void release(OruMouse::Button button, char over)
    {
        under = over;
        ctx.mouse.release(button, ModifierNone, QPoint(84, 63));
        scene.mouseRelease(ctx);
    }
    void move(char over)
    {
        under = over;
        ctx.mouse.move(ctx.mouse.curpos() + QPoint(3, 2), ModifierNone);
        scene.mouseMove(ctx);
    }
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

    /// What a scene in good order shows and says in all that a user does.
    struct Doings
    {
        QImage labelled, frame, captured;
        std::string calls;
    };
    Doings doAll()
    {
        Doings done;
        // Ends what is special about the last hover and the last size.
        resetView();
        ctx.mouse.move(QPoint(30, 60), ModifierNone);
        ctx.tooltip = "tip";
        scene.drawGl(ctx);
        done.labelled = gl.grab();
        ctx.tooltip.clear();
        move('A');
        calls.clear();
        log.yes = {"A.drag"};
        move('B');
        press(OruMouse::ButtonPick, 'A');
        move('A');
        release(OruMouse::ButtonPick, 'B');
        scene.mouseClick(ctx);
        log.yes.clear();
        scene.drawGl(ctx);
        done.frame = gl.grab();
        capture();
        done.captured = image;
        done.calls = calls;
        return done;
    }

    void resting() {}
    void pressing()
    {
        under = 'A';
        ctx.mouse.press(OruMouse::ButtonPick, ModifierNone, QPoint(80, 60));
    }
    void pressingForMenu()
    {
        move('B');
        under = 'A';
        ctx.mouse.press(OruMouse::ButtonContext, ModifierNone, QPoint(80, 60));
    }
    void hovering()
    {
        move('B');
        under = 'A';
        turn();
    }
    void dragging()
    {
        press(OruMouse::ButtonPick, 'A');
        ctx.mouse.move(QPoint(120, 100), ModifierNone);
    }
    void dropping()
    {
        dragging();
        under = 'B';
        ctx.mouse.release(OruMouse::ButtonPick, ModifierNone, QPoint(120, 100));
    }
    void stretching()
    {
        press(OruMouse::ButtonContext, '-');
        ctx.mouse.move(QPoint(120, 100), ModifierNone);
        scene.mouseMove(ctx);
        ctx.mouse.release(OruMouse::ButtonContext, ModifierNone, QPoint(120, 100));
    }
    void clicking()
    {
        press(OruMouse::ButtonPick, 'A');
        release(OruMouse::ButtonPick, 'A');
    }
    void wheeling() { ctx.mouse.wheel(1, ModifierNone, QPoint(120, 100)); }
    void typing() { ctx.key = 'I'; }
    void turn() { ctx.modelView = Matrix::scale(2.0f); }

    void draw() { scene.drawGl(ctx); }
    template <bool (OruScene::*Event)(OruSceneEventContext&)>
    void send()
    {
        (scene.*Event)(ctx);
    }

    /// A place from which the scene calls out.
    struct Site
    {
        const char* name;
        void (FaultInjectionGLTest::*before)();
        void (FaultInjectionGLTest::*event)();
        int held;             ///< button whose press is open afterwards; 0: none
        bool grabbed;         ///< an object is held when it happens
        const char* expected; ///< the calls in order
    };
    static const Site sites[];

    /// Throws at one call of an event, counted from 1; 0: at none.
    void runSite(const Site& site, int faultAt)
    {
        log.text.clear();
        resetView();
        (this->*site.before)();
        loud.touch();
        calls.clear();
        callsToFault = faultAt;
        (this->*site.event)();
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
        const auto button = static_cast<OruMouse::Button>(site.held ? site.held : OruMouse::ButtonPick);
        if (!site.held && site.grabbed) {
            press(button, '-');
        }
        if (site.held || site.grabbed) {
            release(button, '-');
        }
    }

    LoudProbe loud{scene.group};
    QImage image;
    std::string calls;
    int callsToFault = 0;
    int openSessions = 0;
};

using T = FaultInjectionGLTest;

const T::Site T::sites[] = {
    {"draw", &T::resting, &T::draw, 0, false, "begin update resize bounds draw3d draw2d end"},
    {"capture", &T::resting, &T::capture, 0, false,
     "begin update resize resize bounds draw3d draw2d resize draw3d draw2d end"},
    {"press", &T::pressing, &T::send<&OruScene::mousePress>, OruMouse::ButtonPick, false,
     "begin update resize bounds select3d select2d"},
    {"press for a menu", &T::pressingForMenu, &T::send<&OruScene::mousePress>, OruMouse::ButtonContext, false,
     "begin update resize bounds select3d select2d B.leave host.leave A.enter host.enter"},
    {"hover", &T::hovering, &T::send<&OruScene::mouseMove>, 0, false,
     "begin update resize bounds select3d select2d B.leave host.leave A.enter host.enter edit end"},
    {"drag", &T::dragging, &T::send<&OruScene::mouseMove>, OruMouse::ButtonPick, true,
     "A.drag host.drag edit"},
    {"drop", &T::dropping, &T::send<&OruScene::mouseRelease>, 0, true,
     "update resize bounds select3d select2d A.drop host.drop A.release host.release end"},
    {"zoom box", &T::stretching, &T::send<&OruScene::mouseRelease>, 0, false, "edit end"},
    {"click", &T::clicking, &T::send<&OruScene::mouseClick>, 0, false,
     "begin update resize bounds select3d select2d A.click host.click end"},
    {"wheel", &T::wheeling, &T::send<&OruScene::mouseWheel>, 0, false, "begin edit end"},
    {"key", &T::typing, &T::send<&OruScene::keyPress>, 0, false, "begin edit end"},
    {"focus in", &T::turn, &T::send<&OruScene::focusIn>, 0, false, "begin edit end"},
    {"focus out", &T::turn, &T::send<&OruScene::focusOut>, 0, false, "begin edit end"},
    {"enter", &T::turn, &T::send<&OruScene::mouseEnter>, 0, false, "begin edit end"},
    {"leave", &T::turn, &T::send<&OruScene::mouseLeave>, 0, false, "begin edit end"},
};

TEST_F(FaultInjectionGLTest, AnyCallMayThrowAnywhere)
{
    const Doings good = doAll();
    ASSERT_FALSE(good.captured.isNull());
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
            const Doings after = doAll();
            EXPECT_EQ(after.calls, good.calls);
            EXPECT_TRUE(after.labelled == good.labelled);
            EXPECT_TRUE(after.frame == good.frame);
            EXPECT_TRUE(after.captured == good.captured);
            EXPECT_EQ(gl.faults(), "");
        }
    }
}

} // namespace
