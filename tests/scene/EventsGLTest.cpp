// The twelve inputs: which gesture, dispatch or view change each one means, and what it answers.

#include "contracts/core/OruDebugLogger.h"
#include "contracts/debug/logger.h"
#include "tests/core/QtPrint.h"
#include "tests/debug/RecordingSink.h"
#include "tests/math/MathMatchers.h"
#include "tests/scene/DispatchFixture.h"

#include <array>
#include <limits>
#include <regex>

using namespace kelvartest;
using Kelvar::Math::BoundingBox;
using Kelvar::Math::Matrix;
using Kelvar::Math::Vector3;
using Kelvar::UI::Toolkit::KeyModifier;

namespace {

using Event = bool (OruScene::*)(OruSceneEventContext&);

constexpr OruMouse::Button pickButton = OruMouse::ButtonPick;
constexpr OruMouse::Button contextButton = OruMouse::ButtonContext;
constexpr OruMouse::Button viewButton = OruMouse::ButtonView;
constexpr KeyModifier noModifier = Kelvar::UI::Toolkit::ModifierNone;
constexpr KeyModifier first = Kelvar::UI::Toolkit::ModifierFirst;
constexpr KeyModifier secondModifier = Kelvar::UI::Toolkit::ModifierSecond;

#define DRAG "A.drag(7,12,40) host.drag(7,one,12,40)"
#define ENTER "A.enter(7) host.enter(7,one)"

/// Events over a host's context that a draw has brought up to date.
class EventsGLTest : public DispatchTest
{
protected:
    EventsGLTest()
    {
        ctx.projection = Matrix::scale(Vector3(0.75f, 1.0f, -0.1f));
        start = Matrix::rotate(Vector3(1.0f, 2.0f, 3.0f), 30.0f) * Matrix::scale(0.5f);
        renew();
    }

    /// The state that each row of a table starts from: nothing held, the view stored, nobody told.
    void renew()
    {
        DispatchTest::renew();
        scene.setMode(3);
        scene.mappings = OruSceneMouseMappings(scene.group);
        ctx.mouse = OruMouse();
        ctx.keyModifiers = 0;
        ctx.tooltip.clear();
        ctx.boxZoom = OruOglViewport();
        ctx.bounds = BoundingBox(Vector3(-1.0f, -1.0f, -1.0f), Vector3(2.0f, 1.0f, 1.0f));
        ctx.center = Vector3(5.0f, 5.0f, 5.0f);
        ctx.modelView = start;
        scene.setViewpoint(ctx.viewpointName, start);
        editor->calls.clear();
    }

    Matrix stored() const { return scene.viewpoint(ctx.viewpointName); }

    Matrix start;
};

struct GestureRow // NOLINT: the columns read better in this order
{
    const char* name;
    int mode;
    OruMouse::Button button;
    KeyModifier modifier;
    std::vector<QString> mapped; ///< gestures that are put on the button View without a modifier
    std::string gesture;
};

const GestureRow gestureRows[] = {
    {"mode 3", 3, pickButton, noModifier, {}, "rotate"},
    {"mode 1", 1, pickButton, noModifier, {}, "zoom"},
    {"mode 2", 2, pickButton, noModifier, {}, "pan"},
    {"mode 6", 6, pickButton, noModifier, {}, "box"},
    {"mode 4", 4, pickButton, noModifier, {}, "hover"},
    {"mode 5", 5, pickButton, noModifier, {}, "hover"},
    {"mode -1", -1, pickButton, noModifier, {}, "hover"},
    {"mode wants no modifier", 1, pickButton, first, {}, "none"},
    {"default rotate", 6, viewButton, noModifier, {}, "rotate"},
    {"default pan", 3, viewButton, first, {}, "pan"},
    {"default zoom", 3, viewButton, secondModifier, {}, "zoom"},
    {"default box", 3, contextButton, noModifier, {}, "box"},
    {"box wants no modifier", 3, contextButton, first, {}, "none"},
    {"unknown modifier", 3, viewButton, static_cast<KeyModifier>(7), {}, "none"},
    {"zoom comes first", 3, viewButton, noModifier, {"boxZoom", "pan", "zoom"}, "zoom"},
    {"then pan", 3, viewButton, noModifier, {"boxZoom", "pan"}, "pan"},
    {"then rotate", 3, viewButton, noModifier, {"boxZoom"}, "rotate"},
};

TEST_F(EventsGLTest, ButtonModifierAndModeMeanAGesture)
{
    const std::map<std::string, bool (OruSceneZpr::*)(const OruSceneEventContext&, Matrix&) const>
        navigations = {
            {"rotate", &OruSceneZpr::rotate}, {"zoom", &OruSceneZpr::zoom}, {"pan", &OruSceneZpr::pan}};
    for (const GestureRow& row : gestureRows) {
        SCOPED_TRACE(row.name);
        renew();
        scene.setMode(row.mode);
        for (const QString& gesture : row.mapped) {
            scene.mappings.setValue(gesture + "But", "3");
            scene.mappings.setValue(gesture + "Mod", "0");
        }
        ctx.mouse.press(row.button, row.modifier, QPoint(40, 30));
        ctx.mouse.move(QPoint(52, 70), row.modifier);
        under = 'A';
        OruSceneEventContext expected(ctx);
        expected.center = row.gesture == "rotate" ? ctx.bounds.center() : ctx.center;
        expected.boxZoom = row.gesture == "box" ? OruOglViewport(40, 30, 12, 40) : ctx.boxZoom;
        const auto navigation = navigations.find(row.gesture);
        if (navigation != navigations.end()) {
            (scene.zpr.*navigation->second)(expected, expected.modelView);
        }
        EXPECT_EQ(scene.mouseMove(ctx), row.gesture != "none" && row.gesture != "hover");
        EXPECT_THAT(ctx.modelView, NearMatrix(expected.modelView, 0.0));
        EXPECT_EQ(stored(), expected.modelView);
        EXPECT_EQ(ctx.center, expected.center);
        EXPECT_EQ(ctx.boxZoom, expected.boxZoom);
        EXPECT_EQ(log.text, row.gesture == "hover" ? ENTER : "");
    }
}

struct MoveRow // NOLINT: the columns read better in this order
{
    const char* name;
    const char* held; ///< buttons: Pick, which has grabbed an object, and Context
    int modifier;
    unsigned int keyModifiers;
    bool viewChanged; ///< by the host
    const char* yes;
    const char* told;
    bool result;
};

const MoveRow moveRows[] = {
    {"drag taken by the handler", "P", 0, 0, false, "A.drag", DRAG, true},
    {"drag taken, the view is not written", "P", 0, 0, true, "host.drag", DRAG, true},
    {"drag left to the rotation", "P", 0, 0, false, "", DRAG, true},
    {"two buttons dispatch nothing", "PC", 0, 0, false, "A.drag", "", true},
    {"mouse modifier", "P", 1, 0, false, "A.drag", "", false},
    {"keyboard modifier", "P", 0, 4, false, "A.drag", "", true},
    {"hover", "", 0, 0, false, "", ENTER, false},
    {"hover with news", "", 0, 0, false, "host.enter", ENTER, true},
    {"hover over a view that has changed", "", 0, 0, true, "", ENTER, true},
    {"no hover with a modifier", "", 2, 0, false, "A.enter", "", false},
    {"no hover with a key, view written", "", 0, 1, true, "", "", true},
};

TEST_F(EventsGLTest, MoveDecidesFromTheTopDown)
{
    for (const MoveRow& row : moveRows) {
        SCOPED_TRACE(row.name);
        renew();
        under = 'A';
        if (*row.held) {
            scene.controller().OnMouseDown(scene.render, ctx);
        }
        log.yes = {row.yes};
        const auto modifier = static_cast<KeyModifier>(row.modifier);
        for (const char* held = row.held; *held; ++held) {
            ctx.mouse.press(*held == 'P' ? pickButton : contextButton, modifier, QPoint(40, 30));
        }
        ctx.mouse.move(QPoint(40, 30), modifier);
        ctx.mouse.move(QPoint(52, 70), modifier);
        ctx.keyModifiers = row.keyModifiers;
        if (row.viewChanged) {
            ctx.modelView = Matrix::scale(0.125f);
        }
        EXPECT_EQ(scene.mouseMove(ctx), row.result);
        EXPECT_EQ(log.text, row.told);
        const bool taken = *row.held && *row.yes && *row.told;
        EXPECT_EQ(stored(), taken ? start : ctx.modelView);
    }
}

TEST_F(EventsGLTest, BandIsMeasuredFromItsOwnButton)
{
    scene.setMode(6);
    ctx.mouse.press(contextButton, noModifier, QPoint(100, 90));
    ctx.mouse.press(pickButton, noModifier, QPoint(40, 50));
    ctx.mouse.move(QPoint(30, 20), noModifier);
    ctx.mouse.move(QPoint(30, 20), noModifier);
    EXPECT_TRUE(scene.mouseMove(ctx));
    EXPECT_EQ(ctx.boxZoom, OruOglViewport(40, 50, -10, -30));
    scene.setMode(3);
    ctx.mouse.release(pickButton, noModifier, QPoint(30, 20));
    EXPECT_TRUE(scene.mouseMove(ctx));
    EXPECT_EQ(ctx.boxZoom, OruOglViewport(100, 90, -70, -70));
    const int highest = std::numeric_limits<int>::max();
    ctx.mouse.press(contextButton, noModifier, QPoint(-2, highest));
    ctx.mouse.move(QPoint(highest, -9), noModifier);
    EXPECT_TRUE(scene.mouseMove(ctx));
    EXPECT_EQ(ctx.boxZoom, OruOglViewport(-2, highest, highest, -highest - 1));
    EXPECT_EQ(ctx.modelView, start);
}

TEST_F(EventsGLTest, FocusAndCrossingDropTheTooltip)
{
    for (const Event event :
         {&OruScene::focusIn, &OruScene::focusOut, &OruScene::mouseEnter, &OruScene::mouseLeave}) {
        for (const char* tooltip : {"", "tip"}) {
            for (const bool viewChanged : {false, true}) {
                renew();
                ctx.tooltip = *tooltip ? QString(tooltip) : QString();
                ctx.modelView = viewChanged ? Matrix::scale(0.125f) : start;
                EXPECT_EQ((scene.*event)(ctx), viewChanged || *tooltip);
                EXPECT_TRUE(ctx.tooltip.isEmpty() && !ctx.tooltip.isNull());
                EXPECT_EQ(stored(), ctx.modelView);
            }
        }
    }
}

TEST_F(EventsGLTest, PressGrabsOrHovers)
{
    const struct
    {
        OruMouse::Button button;
        KeyModifier modifier;
        const char* told;
        const char* grabbed;
    } rows[] = {
        {pickButton, noModifier, "", DRAG},     {pickButton, first, "", ""},
        {contextButton, noModifier, ENTER, ""}, {contextButton, first, "", ""},
        {viewButton, noModifier, "", ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(::testing::Message() << row.button << " with " << row.modifier);
        renew();
        under = 'A';
        ctx.boxZoom = OruOglViewport(1, 2, 3, 4);
        ctx.modelView = Matrix::scale(0.125f);
        ctx.mouse.press(row.button, row.modifier, QPoint(40, 30));
        log.yes = {"A.enter"};
        EXPECT_FALSE(scene.mousePress(ctx));
        EXPECT_EQ(ctx.boxZoom, OruOglViewport());
        EXPECT_EQ(stored(), start);
        EXPECT_EQ(log.text, row.told);
        log.text.clear();
        ctx.mouse.move(QPoint(52, 70), noModifier);
        scene.controller().OnMouseDrag(scene.render, ctx);
        EXPECT_EQ(log.text, row.grabbed);
        scene.mouseRelease(ctx);
    }
}

const OruOglViewport goodBand(40, 30, 40, -40);
const OruOglViewport smallBand(40, 30, 4, 4);

const struct
{
    const char* name;
    int mode;
    OruMouse::Button button;
    KeyModifier modifier;
    OruOglViewport band;
    bool claimed, viewChanged, due, result;
} releaseRows[] = {
    {"box of the mappings", 3, contextButton, noModifier, goodBand, false, false, true, true},
    {"box of the mode", 6, pickButton, noModifier, goodBand, false, false, true, true},
    {"too small a box", 3, contextButton, noModifier, smallBand, false, false, true, false},
    {"too small a box, view written", 3, contextButton, noModifier, smallBand, false, true, true, true},
    {"claimed by the handler", 6, pickButton, noModifier, goodBand, true, true, false, true},
    {"pick in another mode", 3, pickButton, noModifier, goodBand, false, true, false, false},
    {"box button with a modifier", 3, contextButton, first, goodBand, false, true, false, false},
    {"view button", 6, viewButton, noModifier, goodBand, false, true, false, false},
};

TEST_F(EventsGLTest, ReleaseEndsTheBox)
{
    for (const auto& row : releaseRows) {
        SCOPED_TRACE(row.name);
        renew();
        scene.setMode(row.mode);
        under = row.claimed ? 'A' : '-';
        ctx.mouse.press(row.button, row.modifier, QPoint(40, 30));
        scene.mousePress(ctx);
        log.yes = {"A.release"};
        ctx.boxZoom = row.band;
        ctx.modelView = row.viewChanged ? Matrix::scale(0.125f) : start;
        Matrix view = ctx.modelView;
        if (row.due) {
            scene.zpr.zoomBox(ctx, view);
        }
        ctx.mouse.release(row.button, noModifier, QPoint(80, 10));
        EXPECT_EQ(scene.mouseRelease(ctx), row.result);
        EXPECT_EQ(ctx.boxZoom, row.due ? OruOglViewport() : row.band);
        EXPECT_EQ(ctx.modelView, view);
        EXPECT_EQ(stored(), row.due ? view : start);
        EXPECT_EQ(editor->calls.back(), "end");
    }
}

TEST_F(EventsGLTest, ClickOfThePickButtonAlone)
{
    for (const OruMouse::Button button : {pickButton, contextButton, viewButton}) {
        for (const KeyModifier modifier : {noModifier, first, secondModifier}) {
            SCOPED_TRACE(::testing::Message() << button << " with " << modifier);
            renew();
            under = 'A';
            log.yes = {"A.click"};
            ctx.mouse.press(button, modifier, QPoint(40, 30));
            ctx.mouse.release(button, modifier, QPoint(40, 30));
            const bool clicks = button == pickButton && modifier != secondModifier;
            EXPECT_EQ(scene.mouseClick(ctx), clicks);
            EXPECT_EQ(log.text.empty(), !clicks);
        }
    }
}

TEST_F(EventsGLTest, WheelZoomsAndStores)
{
    for (const int delta : {0, 120, -1}) {
        renew();
        ctx.mouse.wheel(delta, noModifier, QPoint(40, 30));
        Matrix view = start;
        scene.zpr.zoomWheel(ctx, view);
        EXPECT_EQ(scene.mouseWheel(ctx), delta != 0);
        EXPECT_EQ(ctx.modelView, view);
        EXPECT_EQ(stored(), view);
    }
    ctx.viewpointName = "no such";
    ctx.mouse.wheel(1, noModifier, QPoint(40, 30));
    EXPECT_FALSE(scene.mouseWheel(ctx)) << "the view has moved, but there is nowhere to store it";
}

TEST_F(EventsGLTest, OperationsAreTracedByTheirSignatures)
{
    const Event events[] = {&OruScene::focusIn,    &OruScene::focusOut,     &OruScene::mouseEnter,
                            &OruScene::mouseLeave, &OruScene::mouseMove,    &OruScene::mouseWheel,
                            &OruScene::mousePress, &OruScene::mouseRelease, &OruScene::mouseDoubleClick,
                            &OruScene::mouseClick, &OruScene::keyPress,     &OruScene::keyRelease};
    const auto sink = std::make_shared<RecordingSink>();
    oru::debug_logger::debuglogger().setSink(sink);
    oru::debug_logger::debuglogger().setTracing(true);
    OruScene{QString(), QString(), QString()};
    QImage image;
    ctx.viewport.width = 90;
    scene.drawGl(ctx, image);
    under = 'A';
    ctx.mouse.press(pickButton, noModifier, QPoint(40, 30));
    scene.mousePress(ctx);
    ctx.mouse.move(QPoint(50, 30), noModifier);
    scene.mouseMove(ctx);
    ctx.mouse.release(pickButton, noModifier, QPoint(50, 30));
    for (const Event event : events) {
        (scene.*event)(ctx);
    }
    oru::debug_logger::debuglogger().setTracing(false);
    oru::debug_logger::debuglogger().setSink(nullptr);

    std::set<std::array<std::string, 3>> operations; // class, name, whole signature
    for (const std::string& line : sink->lines) {
        std::smatch parts;
        if (std::regex_match(line, parts, std::regex("T *> (.*?(\\w+)::(~?\\w+)\\(.*) @line [0-9]+"))) {
            operations.insert({parts[2], parts[3], parts[1]});
        }
    }
    std::string traced;
    for (const auto& operation : operations) {
        traced += operation[1] + ' ';
    }
    EXPECT_EQ(traced, "OruScene drawGl drawGl focusIn focusOut keyPress keyRelease mouseClick "
                      "mouseDoubleClick mouseEnter mouseLeave mouseMove mousePress mouseRelease mouseWheel "
                      "setViewpoint viewpoint ~OruScene OnMouseClick OnMouseDown OnMouseUp hitTop "
                      "OruSceneRender draw resize select update ~OruSceneRender ");
    EXPECT_TRUE(operations.count(
        {"OruScene", "mouseMove", "virtual bool OruScene::mouseMove(OruSceneEventContext&)"}));
}

TEST_F(EventsGLTest, KeysTurnTheView)
{
    const std::map<std::pair<int, unsigned int>, int> positions = {
        {{'F', 0}, 7}, {{'F', 1}, 7}, {{'F', 2}, 7}, {{'F', 3}, 7}, {{'I', 0}, 6},
        {{'I', 1}, 6}, {{'I', 2}, 6}, {{'I', 3}, 6}, {{'X', 0}, 0}, {{'X', 2}, 1},
        {{'Y', 0}, 2}, {{'Y', 2}, 3}, {{'Z', 0}, 4}, {{'Z', 2}, 5}};
    for (int input = 0; input < 7 * 4; ++input) {
        renew();
        ctx.key = "FIXYZx"[input / 4];
        ctx.keyModifiers = static_cast<unsigned int>(input % 4);
        SCOPED_TRACE(::testing::Message() << ctx.key << " with " << ctx.keyModifiers);
        const auto known = positions.find({ctx.key, ctx.keyModifiers});
        Matrix view = start;
        if (known != positions.end()) {
            scene.zpr.zoomTo(ctx, static_cast<OruSceneZpr::Position>(known->second), view);
        }
        // Pressed again the view stays and the answer, too.
        for (int times = 0; times < 2; ++times) {
            EXPECT_EQ(scene.keyPress(ctx), known != positions.end());
            EXPECT_EQ(ctx.modelView, view);
            EXPECT_EQ(stored(), view);
        }
    }
    ctx.viewport.height = 0;
    ctx.key = 'F';
    EXPECT_FALSE(scene.keyPress(ctx));
}

} // namespace
