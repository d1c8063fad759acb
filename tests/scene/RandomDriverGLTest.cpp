// A random host: long streams of events with nonsense in between, over objects and hosts that throw, die and
// call back. KELVAR_DRIVER_EVENTS sets how many events there are, KELVAR_DRIVER_SEED where they start.

#include "contracts/ogl/OruOglFunctions.h"
#include "contracts/ogl/OruOglGl.h"
#include "tests/scene/DispatchFixture.h"

#include <QScopedValueRollback>

#include <array>
#include <cstdlib>
#include <random>
#include <stdexcept>

using namespace kelvartest;
using Kelvar::Math::Matrix;
using Kelvar::Math::Vector3;
using Kelvar::UI::Toolkit::KeyModifier;

namespace {

unsigned int setting(const char* variable, unsigned int fallback)
{
    const char* const text = std::getenv(variable);
    return text ? static_cast<unsigned int>(std::strtoul(text, nullptr, 10)) : fallback;
}

class RandomDriverGLTest : public SceneTest
{
protected:
    using Event = bool (OruScene::*)(OruSceneEventContext&);

    RandomDriverGLTest()
        : SceneTest(QSize(64, 48))
    {
        log.whim = [this](const std::string& call) { return whim(call); };
        for (Object& object : objects) {
            object.probe.reset(new Probe(scene.group));
        }
        editor->action = [this](const std::string& call) {
            opened += call == "begin";
            closed += call == "end";
        };
        probe.action = [this](const std::string&) {
            if (!calm && chance(500)) {
                // The list takes off what a visualization leaves behind when it throws.
                glPushAttrib(OruOglAllAttribBits);
                glPushMatrix();
                throw std::runtime_error("of a pass");
            }
        };
        probe.pickAction = [this](const std::string& pass, const OruVisualization::SelectContext&,
                                  OruVisHitRecordList& hits) { report(pass, hits); };
    }

    int random(int low, int high) { return std::uniform_int_distribution<int>(low, high)(numbers); }
    bool chance(int oneIn) { return random(1, oneIn) == 1; }

    void report(const std::string& pass, OruVisHitRecordList& hits)
    {
        const int which = random(0, 7);
        if (which >= static_cast<int>(objects.size())) {
            return;
        }
        Object& object = objects[static_cast<size_t>(which)];
        if (!object.handler && chance(3)) {
            object.handler = boost::make_shared<Handler>(log, std::to_string(which));
        }
        OruVisHitRecord record;
        record.distance = 0.001 * random(0, 1000);
        record.name = chance(50) ? OruVisHitRecord::INVALID_NAME : static_cast<unsigned int>(which + 1);
        const bool flat = pass == "select2d";
        hits.add(record, flat ? OruVisHitRecordList::Rank::Flat2d : OruVisHitRecordList::Rank::Scene3d, 0.0,
                 object.handler, object.probe.get());
    }

    /// What an object, called "0.click" and the like, or a host does when it is called, and its answer.
    bool whim(const std::string& call)
    {
        if (call.find(".enter") != std::string::npos) {
            *log.tooltip = QStringLiteral("tip");
        }
        const int trick = random(0, 49);
        if (trick == 0) {
            throw std::runtime_error("of a handler");
        }
        if (trick == 1 && call[0] != 'h') {
            Object& object = objects[static_cast<size_t>(call[0] - '0')];
            object.handler.reset();
            object.probe.reset(new Probe(scene.group));
        }
        if (trick == 2) {
            changeHost();
        }
        if (trick <= 8 && trick >= 3 && !nested) {
            const QScopedValueRollback<bool> inside(nested, true);
            const Event events[] = {&OruScene::mouseMove, &OruScene::mouseClick, &OruScene::keyPress,
                                    &OruScene::focusOut};
            trick == 3   ? scene.drawGl(ctx)
            : trick == 4 ? void(scene.setViewpoint(ctx.viewpointName, Matrix::scale(0.5f)))
                         : void((scene.*events[trick - 5])(ctx));
        }
        return trick % 3 == 0;
    }

    void changeHost()
    {
        scene.controller().reset(chance(3) ? nullptr : boost::make_shared<Host>(log, "host"), scene.render);
    }

    QPoint place()
    {
        return chance(8) ? QPoint(random(-900, 900), random(-900, 900))
                         : QPoint(random(0, 63), random(0, 47));
    }
    OruMouse::Button button() { return static_cast<OruMouse::Button>(random(chance(20) ? -1 : 1, 3)); }
    KeyModifier modifier() { return static_cast<KeyModifier>(chance(3) ? random(-1, 3) : 0); }

    void edit()
    {
        const char* const edits[][5] = {{"zpr", "zoomInvert", "true", "false", "perhaps"},
                                        {"zpr", "zoomWheelFactor", "0", "1.1", "0.5"},
                                        {"render", "pickSize", "3", "-2", "nan"},
                                        {"mouse mappings", "panBut", "3", "1", "-99"},
                                        {"mouse mappings", "boxZoomBut", "2", "1", "1000"},
                                        {"mouse mappings", "zoomMod", "2", "0", "none"}};
        const auto& row = edits[random(0, 5)];
        scene.find(row[0])->setValue(row[1], row[random(2, 4)]);
        const int modes[] = {1, 2, 3, 6, 4};
        scene.setMode(modes[random(0, 4)]);
    }

    void press()
    {
        ++presses;
        ctx.mouse.press(button(), modifier(), place());
        scene.mousePress(ctx);
    }

    void release()
    {
        presses -= presses > 0;
        ctx.mouse.release(button(), modifier(), place());
        scene.mouseRelease(ctx);
    }

    /// One thing that a host does. What the scene throws reaches it.
    void act()
    {
        ctx.keyModifiers = static_cast<unsigned int>(chance(3) ? random(0, 3) : 0);
        const int keys[] = {'F', 'I', 'X', 'Y', 'Z', 'Q', 0};
        ctx.key = keys[random(0, 6)];
        const Event others[] = {&OruScene::focusIn,    &OruScene::focusOut,         &OruScene::mouseEnter,
                                &OruScene::mouseLeave, &OruScene::mouseDoubleClick, &OruScene::keyPress,
                                &OruScene::keyRelease, &OruScene::mouseClick};
        const int kind = random(0, 99);
        if (kind < 50) {
            ctx.mouse.move(place(), modifier());
            scene.mouseMove(ctx);
        } else if (kind < 60) {
            press();
        } else if (kind < 75) {
            release();
        } else if (kind < 80) {
            ctx.mouse.wheel(random(-2, 2), modifier(), place());
            scene.mouseWheel(ctx);
        } else if (kind < 96) {
            (scene.*others[random(0, 7)])(ctx);
        } else if (kind < 97) {
            scene.drawGl(ctx);
        } else if (kind < 98) {
            changeHost();
        } else {
            edit();
        }
    }

    float scale() const { return ctx.modelView.transformDirection(Vector3::X).length(); }

    /// One event, in a viewport that now and then has no area, and what a careful host does about it.
    void event()
    {
        const OruOglViewport good = ctx.viewport;
        const bool bad = chance(50);
        if (bad) {
            ctx.viewport.width = random(-3, 1) * random(0, 40);
            ctx.viewport.height = random(-3, 0) * random(1, 40);
        }
        ctx.projection = glGetOrtho(ctx.viewport, ctx.bounds, ctx.modelView);
        try {
            act();
        } catch (const std::runtime_error&) {
            ++thrown;
        }
        ctx.viewport = good;
        EXPECT_TRUE(ctx.modelView.isFinite());
        if (bad || !(scale() > 1e-6f && scale() < 1e6f)) {
            const QScopedValueRollback<bool> inside(calm, true);
            ctx.key = 'Z';
            ctx.keyModifiers = 0;
            scene.keyPress(ctx);
            EXPECT_TRUE(ctx.modelView.isFinite() && scale() > 1e-6f && scale() < 1e6f);
        }
        EXPECT_EQ(opened - closed, presses > 0 ? 1u : 0u);
        EXPECT_EQ(gl.faults(), "");
        editor->calls.clear();
        probe.passes.clear();
        log.text.clear();
        log.editors.clear();
    }

    struct Object
    {
        std::unique_ptr<Probe> probe;
        boost::shared_ptr<IOruVisEventHandler> handler;
    };

    std::mt19937 numbers{setting("KELVAR_DRIVER_SEED", 20)};
    std::array<Object, 4> objects;
    CallLog log;
    bool nested = false;
    bool calm = false; ///< no pass throws
    unsigned int presses = 0;
    unsigned int opened = 0;
    unsigned int closed = 0;
    unsigned int thrown = 0;
};

TEST_F(RandomDriverGLTest, SceneStaysWholeUnderAnyStreamOfEvents)
{
    const unsigned int events = setting("KELVAR_DRIVER_EVENTS", 100000);
    for (unsigned int number = 0; number < events && !HasFailure(); ++number) {
        SCOPED_TRACE(::testing::Message() << "event " << number);
        event();
    }
    calm = true;
    log.whim = nullptr;
    while (presses > 0 && !HasFailure()) {
        release();
    }
    EXPECT_EQ(opened, closed);
    EXPECT_GT(thrown, events / 1000);
}

} // namespace
