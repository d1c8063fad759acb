// The dispatch of hits: who is told what, in which order, and what happens when those who are told die, throw
// or come back with something of their own.

#include "contracts/core/OruStringBuilder.h"
#include "contracts/ogl/OruOglText.h"
#include "contracts/vis/OruVisHitLabelQualifier.h"
#include "contracts/vis/OruVisTriad.h"
#include "tests/core/QtPrint.h"
#include "tests/math/MathMatchers.h"
#include "tests/scene/DispatchFixture.h"

#include <algorithm>
#include <iterator>
#include <stdexcept>
#include <utility>

using namespace kelvartest;
using Kelvar::Math::BoundingBox;
using Kelvar::Math::Matrix;
using Kelvar::Math::Vector3;
using Kelvar::UI::Toolkit::KeyModifier;
using ::testing::_;
using ::testing::ElementsAre;

namespace {

/// Runs scripts of one letter a step:
///   A B S N I -   what lies under the pointer from now on
///   d g m u c     press, drag, move, release, click
///   h s n         the host's controller becomes the first one, the second one, none
///   k K           the first or the second object dies with its handler
///   t V W E       throw; set the viewpoint; draw; an event of the scene
///   !             what was set as a reaction counts from here on
class DispatchGLTest : public DispatchTest
{
protected:
    bool step(char letter)
    {
        OruSceneController& controller = scene.controller();
        switch (letter) {
        case 'd':
            return controller.OnMouseDown(scene.render, ctx);
        case 'g':
            return controller.OnMouseDrag(scene.render, ctx);
        case 'm':
            return controller.OnMouseMove(scene.render, ctx, ctx.tooltip);
        case 'u':
            return controller.OnMouseUp(scene.render, ctx);
        case 'c':
            return controller.OnMouseClick(scene, ctx);
        case 'h':
        case 's':
        case 'n':
            controller.reset(letter == 'h' ? host : letter == 's' ? second : nullptr, scene.render);
            return false;
        case 'k':
            a.reset();
            one.reset();
            return false;
        case 'K':
            b.reset();
            two.reset();
            return false;
        case 't':
            throw std::runtime_error("of the test");
        default:
            return sceneStep(letter);
        }
    }

    bool sceneStep(char letter)
    {
        switch (letter) {
        case 'V':
            return scene.setViewpoint("viewpoint", Matrix::scale(3.0f));
        case 'W':
            scene.drawGl(ctx);
            return false;
        case 'E':
            return scene.mouseMove(ctx);
        default:
            under = letter;
            return false;
        }
    }

    /// The result of the last step. An exception that reaches the host is noted.
    bool run(const std::string& script, const std::string& at, const std::string& reaction)
    {
        const auto arm = [&] {
            log.reactions[at] = [this, reaction] {
                for (const char letter : reaction) {
                    step(letter);
                }
            };
        };
        if (script.find('!') == std::string::npos) {
            arm();
        }
        bool result = false;
        for (const char letter : script) {
            try {
                result = letter == '!' ? (arm(), false) : step(letter);
            } catch (const std::runtime_error&) {
                log.text += log.text.empty() ? "throw" : " throw";
            }
        }
        return result;
    }
};

struct Row
{
    const char* name;
    const char* script;
    const char* at; ///< call that causes the reaction
    const char* reaction;
    std::set<std::string> yes;
    const char* expected;
    bool result;
};

#define ENTER_A "A.OnHoverEnter(7) host.OnHoverEnter(7,one)"
#define LEAVE_A "A.OnHoverLeave(7) host.OnHoverLeave(7,one)"
#define ENTER_B "B.OnHoverEnter(9) host.OnHoverEnter(9,two)"
#define DRAG_A "A.OnDrag(7,3,-4) host.OnDrag(7,one,3,-4)"
#define DRAG_B "B.OnDrag(9,3,-4) host.OnDrag(9,two,3,-4)"
#define DROP_AB "A.OnDrop(7,9) host.OnDrop(7,9,one,two)"
#define RELEASE_A "A.OnRelease(7) host.OnRelease(7,one)"
#define CLICK_A "A.OnClick(7) host.OnClick(7,one,0)"
#define CLICK_NONE "host.OnClick(16777215,null,0)"

const Row plainRows[] = {
    {"press tells nobody", "Ad", "", "", {"host.OnDrag"}, "", false},
    {"press over nothing", "-dgu", "", "", {}, "", false},
    {"press without a handler", "NdgBu", "", "", {}, "", false},
    {"second press keeps the first grab", "AdBdg", "", "", {}, DRAG_A, false},
    {"press over nothing keeps the grab", "Ad-dg", "", "", {}, DRAG_A, false},
    {"drag, both say no", "Adg", "", "", {}, DRAG_A, false},
    {"drag, handler says yes", "Adg", "", "", {"A.OnDrag"}, DRAG_A, true},
    {"drag, host says yes", "Adg", "", "", {"host.OnDrag"}, DRAG_A, true},
    {"drag without a host", "nAdg", "", "", {"host.OnDrag"}, "A.OnDrag(7,3,-4)", false},
    {"release on the spot", "Adu", "", "", {}, RELEASE_A, false},
    {"release, handler says yes", "Adu", "", "", {"A.OnRelease"}, RELEASE_A, true},
    {"release, host says yes", "Adu", "", "", {"host.OnRelease"}, RELEASE_A, true},
    {"release over nothing", "Ad-u", "", "", {}, RELEASE_A, false},
    {"release ends the grab", "Adugu", "", "", {}, RELEASE_A, false},
    {"release without a grab", "Au", "", "", {}, "", false},
    {"release over the same name", "AdSu", "", "", {}, RELEASE_A, false},
    {"drop", "AdBu", "", "", {}, DROP_AB " " RELEASE_A, false},
    {"drop, handler says yes", "AdBu", "", "", {"A.OnDrop"}, DROP_AB " " RELEASE_A, true},
    {"drop, host is not asked", "AdBu", "", "", {"host.OnDrop"}, DROP_AB " " RELEASE_A, false},
    {"drop on one without a handler",
     "AdNu",
     "",
     "",
     {},
     "A.OnDrop(7,11) host.OnDrop(7,11,one,two) " RELEASE_A,
     false},
    {"drop on the name of no object",
     "AdIu",
     "",
     "",
     {},
     "A.OnDrop(7,16777215) host.OnDrop(7,16777215,one,two) " RELEASE_A,
     false},
    {"drop without a host", "nAdBu", "", "", {}, "A.OnDrop(7,9) A.OnRelease(7)", false},
    {"hover over nothing", "-m", "", "", {"host.OnHoverEnter"}, "", false},
    {"hover without a handler", "Nm", "", "", {"host.OnHoverEnter"}, "", false},
    {"enter", "Am", "", "", {}, ENTER_A, false},
    {"enter, handler says yes", "Am", "", "", {"A.OnHoverEnter"}, ENTER_A, true},
    {"enter, host says yes", "Am", "", "", {"host.OnHoverEnter"}, ENTER_A, true},
    {"stay", "Amm", "", "", {}, ENTER_A " " LEAVE_A " " ENTER_A, false},
    {"on to another", "AmBm", "", "", {}, ENTER_A " " LEAVE_A " " ENTER_B, false},
    {"leave, handler says yes", "AmBm", "", "", {"A.OnHoverLeave"}, ENTER_A " " LEAVE_A " " ENTER_B, true},
    {"leave, host says yes", "Am-m", "", "", {"host.OnHoverLeave"}, ENTER_A " " LEAVE_A, true},
    {"left for good, told again", "Am-mm", "", "", {}, ENTER_A " " LEAVE_A " " LEAVE_A, false},
    {"on to one without a handler", "AmNmBm", "", "", {}, ENTER_A " " LEAVE_A " " LEAVE_A " " ENTER_B, false},
    {"hover without a host",
     "nAmm",
     "",
     "",
     {},
     "A.OnHoverEnter(7) A.OnHoverLeave(7) A.OnHoverEnter(7)",
     false},
    {"click", "Ac", "", "", {}, CLICK_A, false},
    {"click, handler says yes", "Ac", "", "", {"A.OnClick"}, CLICK_A, true},
    {"click, host says yes", "Ac", "", "", {"host.OnClick"}, CLICK_A, true},
    {"click without a host", "nAc", "", "", {"A.OnClick"}, "A.OnClick(7)", true},
    {"click on nothing", "-c", "", "", {}, CLICK_NONE, false},
    {"click on nothing, host says yes", "-c", "", "", {"host.OnClick"}, CLICK_NONE, true},
    {"click on nothing without a host", "n-c", "", "", {}, "", false},
    {"click without a handler", "Nc", "", "", {"host.OnClick"}, CLICK_NONE, true},
    {"click leaves grab and hover",
     "AmdBcgm",
     "",
     "",
     {},
     ENTER_A " B.OnClick(9) host.OnClick(9,two,0) " DRAG_A " " LEAVE_A " " ENTER_B,
     false},
    {"reset ends what the old host saw",
     "AmdsBgu",
     "",
     "",
     {},
     ENTER_A " A.OnRelease(7) A.OnHoverLeave(7) A.OnDrag(7,3,-4) second.OnDrag(7,one,3,-4) A.OnDrop(7,9) "
             "second.OnDrop(7,9,one,two) A.OnRelease(7) second.OnRelease(7,one)",
     false},
    {"reset to the same", "Amdhh", "", "", {}, ENTER_A, false},
    {"reset to none, twice", "Amdnn", "", "", {}, ENTER_A " A.OnRelease(7) A.OnHoverLeave(7)", false},
    {"reset with no live record", "Amdkn", "", "", {}, ENTER_A, false},
};

const Row deathRows[] = {
    {"held object dies", "AdkguB", "", "", {}, "", false},
    {"stale grab gives way", "AdkBdg", "", "", {}, DRAG_B, false},
    {"hovered object dies", "AmkBm", "", "", {}, ENTER_A " " ENTER_B, false},
    {"dies in its drag", "Adgg", "A.OnDrag", "k", {}, "A.OnDrag(7,3,-4) host.OnDrag(7,null,3,-4)", false},
    {"dies in its enter",
     "Amm",
     "A.OnHoverEnter",
     "k-",
     {},
     "A.OnHoverEnter(7) host.OnHoverEnter(7,null)",
     false},
    {"dies in its leave",
     "AmBm",
     "A.OnHoverLeave",
     "k",
     {},
     ENTER_A " A.OnHoverLeave(7) host.OnHoverLeave(7,null) " ENTER_B,
     false},
    {"dies between leave and enter", "Amm", "host.OnHoverLeave", "k", {}, ENTER_A " " LEAVE_A, false},
    {"next one dies in the leave", "AmBm", "A.OnHoverLeave", "K", {}, ENTER_A " " LEAVE_A, false},
    {"dies in the hit test of a move", "Am!Bm", "pick", "k", {}, ENTER_A " " ENTER_B, false},
    {"dies in the hit test of a release",
     "Ad!Bu",
     "pick",
     "k",
     {},
     "host.OnDrop(7,9,null,two) host.OnRelease(7,null)",
     false},
    {"dies in its drop",
     "AdBu",
     "A.OnDrop",
     "k",
     {},
     "A.OnDrop(7,9) host.OnDrop(7,9,null,two) host.OnRelease(7,null)",
     false},
    {"target dies in the drop",
     "AdBu",
     "A.OnDrop",
     "K",
     {},
     "A.OnDrop(7,9) host.OnDrop(7,9,one,null) " RELEASE_A,
     false},
    {"target without a handler dies",
     "AdNu",
     "A.OnDrop",
     "K",
     {},
     "A.OnDrop(7,11) host.OnDrop(7,11,one,null) " RELEASE_A,
     false},
    {"dies in the host's drop", "AdBu", "host.OnDrop", "k", {}, DROP_AB " host.OnRelease(7,null)", false},
    {"dies in its release", "Adug", "A.OnRelease", "k", {}, "A.OnRelease(7) host.OnRelease(7,null)", false},
    {"dies in its click", "Ac", "A.OnClick", "k", {}, "A.OnClick(7) host.OnClick(7,null,0)", false},
    {"dies in the hit test of a click", "Ac", "pick", "k", {}, CLICK_NONE, false},
    {"dies in a reset's release", "Amdng", "A.OnRelease", "k", {}, ENTER_A " A.OnRelease(7)", false},
};

const Row throwRows[] = {
    {"press throws", "Adg", "pick", "t", {}, "throw", false},
    {"drag throws", "Adgg", "A.OnDrag", "t", {}, "A.OnDrag(7,3,-4) throw " DRAG_A, false},
    {"host throws", "Adgg", "host.OnDrag", "t", {}, DRAG_A " throw " DRAG_A, false},
    {"hit test of a release throws", "Ad!Bug", "pick", "t", {}, "throw " DRAG_A, false},
    {"drop throws", "AdBug", "A.OnDrop", "t", {}, "A.OnDrop(7,9) throw " DRAG_A, false},
    {"release throws", "Adug", "A.OnRelease", "t", {}, "A.OnRelease(7) throw " DRAG_A, false},
    {"host's release throws", "Adug", "host.OnRelease", "t", {}, RELEASE_A " throw " DRAG_A, false},
    {"leave throws",
     "AmBmm",
     "A.OnHoverLeave",
     "t",
     {},
     ENTER_A " A.OnHoverLeave(7) throw " LEAVE_A " " ENTER_B,
     false},
    {"enter throws",
     "AmAm",
     "A.OnHoverEnter",
     "t",
     {},
     "A.OnHoverEnter(7) throw " LEAVE_A " " ENTER_A,
     false},
    {"click throws", "Acc", "A.OnClick", "t", {}, "A.OnClick(7) throw " CLICK_A, false},
    {"reset throws and keeps the host",
     "Adng",
     "A.OnRelease",
     "t",
     {},
     "A.OnRelease(7) throw " DRAG_A,
     false},
};

const Row reentryRows[] = {
    {"handler replaces the host",
     "Adg",
     "A.OnDrag",
     "s",
     {},
     "A.OnDrag(7,3,-4) A.OnRelease(7) second.OnDrag(7,one,3,-4)",
     false},
    {"host replaces itself",
     "Adgg",
     "host.OnDrag",
     "n",
     {},
     DRAG_A " A.OnRelease(7) A.OnDrag(7,3,-4)",
     false},
    {"reset out of a reset",
     "Amdng",
     "A.OnRelease",
     "s",
     {},
     ENTER_A " A.OnRelease(7) A.OnHoverLeave(7) A.OnDrag(7,3,-4) second.OnDrag(7,one,3,-4)",
     false},
    {"reset out of a reset to what was",
     "Amdng",
     "A.OnHoverLeave",
     "h",
     {},
     ENTER_A " A.OnRelease(7) A.OnHoverLeave(7) " DRAG_A,
     false},
    {"host goes in its click", "Ac-c", "host.OnClick", "n", {}, CLICK_A, false},
    {"viewpoint and draw out of a drag", "Adg", "A.OnDrag", "VW", {}, DRAG_A, false},
    {"draw out of an enter", "Am-m", "host.OnHoverEnter", "WV", {}, ENTER_A " " LEAVE_A, false},
    {"move out of a leave",
     "AmBm",
     "A.OnHoverLeave",
     "m",
     {},
     ENTER_A " A.OnHoverLeave(7) A.OnHoverLeave(7) host.OnHoverLeave(7,one) " ENTER_B
             " host.OnHoverLeave(7,one) " ENTER_B,
     false},
    {"release out of a drop",
     "AdBu",
     "A.OnDrop",
     "Au",
     {},
     "A.OnDrop(7,9) A.OnRelease(7) host.OnRelease(7,one) host.OnDrop(7,9,one,two) " RELEASE_A,
     false},
    {"event out of a click",
     "Ac",
     "A.OnClick",
     "E",
     {},
     "A.OnClick(7) " ENTER_A " host.OnClick(7,one,0)",
     false},
    {"press out of a release grabs nothing",
     "AdBug",
     "host.OnRelease",
     "d",
     {},
     DROP_AB " " RELEASE_A,
     false},
};

TEST_F(DispatchGLTest, CallsComeInOneOrder)
{
    ctx.mouse.move(QPoint(80, 60), KeyModifier());
    ctx.mouse.move(QPoint(83, 56), KeyModifier());
    OruOglText* text = nullptr;
    const auto pick = probe.pickAction;
    probe.pickAction = [&](const std::string& pass, const OruVisualization::SelectContext& sel,
                           OruVisHitRecordList& hits) {
        text = &sel.text;
        EXPECT_TRUE(text->selectMode());
        pick(pass, sel, hits);
    };
    const auto check = [&](const Row& row) {
        SCOPED_TRACE(row.name);
        // Each row starts with objects and a controller that nothing has happened to.
        scene.controller() = OruSceneController();
        scene.controller().reset(host, scene.render);
        for (auto* object : {&one, &two}) {
            if (!*object) {
                object->reset(new Probe(scene.group));
                (*object)->rename(object == &one ? QStringLiteral("one") : QStringLiteral("two"));
                scene.render.visualizations.insert(object->get(), true);
            }
        }
        a = boost::make_shared<Handler>(log, "A");
        b = boost::make_shared<Handler>(log, "B");
        log = CallLog();
        log.yes = row.yes;
        under = '-';
        EXPECT_EQ(run(row.script, row.at, row.reaction), row.result);
        EXPECT_EQ(log.text, row.expected);
        EXPECT_TRUE(*row.at == '\0' || log.reactions.empty()) << row.at << " did not come";
        EXPECT_EQ(gl.faults(), "");
        EXPECT_TRUE(!text || !text->selectMode());
    };
    std::for_each(std::begin(plainRows), std::end(plainRows), check);
    std::for_each(std::begin(deathRows), std::end(deathRows), check);
    std::for_each(std::begin(throwRows), std::end(throwRows), check);
    std::for_each(std::begin(reentryRows), std::end(reentryRows), check);
}

TEST_F(DispatchGLTest, CallsCarryEditorBuilderAndTooltip)
{
    scene.render.decimalSeparator.setValue(0x100 + ',');
    scene.render.significantDigits.setValue(3);
    IOruVisPropertyEdit* const inForce = editor.get();
    QString dropped("not null");
    under = 'A';
    EXPECT_CALL(*a, OnHoverEnter)
        .WillOnce([](const OruVisHitRecord& hit, const OruStringBuilder& builder, QString& tooltip) {
            tooltip += "<" + builder.number(hit.distance) + ">";
            return false;
        });
    EXPECT_CALL(*host, OnHoverEnter).WillOnce([](auto&&, auto&&, QString& tooltip) {
        tooltip += "host";
        return false;
    });
    EXPECT_CALL(*a, OnHoverLeave).WillOnce([&](auto&&, auto&&, QString& tooltip) {
        dropped = tooltip;
        tooltip = "lost";
        return true;
    });
    EXPECT_CALL(*a, OnDrop(_, _, inForce));
    EXPECT_CALL(*a, OnRelease(_, inForce)).Times(2);
    EXPECT_CALL(*a, OnClick(_, inForce));
    EXPECT_CALL(*host, OnClick(_, _, true));
    ctx.tooltip = "was ";
    run("md", "", "");
    EXPECT_EQ(ctx.tooltip, "was <0,5>host");
    ctx.mouse.setModifier(Kelvar::UI::Toolkit::ModifierFirst);
    run("cBuAdn", "", "");
    EXPECT_TRUE(dropped.isNull());
    EXPECT_EQ(ctx.tooltip, "was <0,5>host");
}

TEST_F(DispatchGLTest, ClickTellsTheHostOfTheFirstModifierAlone)
{
    for (const int modifier : {0, 1, 2, 3, -1}) {
        log.text.clear();
        ctx.mouse.setModifier(static_cast<KeyModifier>(modifier));
        run("-c", "", "");
        EXPECT_EQ(log.text, modifier == 1 ? "host.OnClick(16777215,null,1)" : CLICK_NONE) << modifier;
    }
}

TEST_F(DispatchGLTest, HitTestBringsThePickUpToDate)
{
    const struct
    {
        const char* stored;
        int size;
    } sizes[] = {{"3", 3}, {"3.9", 3}, {"0.9", 0}, {"-2.5", -2}, {"nan", 0}, {"1e30", 2147483520}};
    ctx.modelView = Matrix::scale(0.5f);
    ctx.projection = Matrix::scale(0.25f);
    ctx.mouse.move(QPoint(12, 34), KeyModifier());
    for (const auto& row : sizes) {
        SCOPED_TRACE(row.stored);
        scene.render.setValue("pickSize", row.stored);
        QSize seen;
        probe.pickAction = [&](const std::string& pass, const OruVisualization::SelectContext& sel,
                               OruVisHitRecordList&) {
            seen = sel.pickSize;
            EXPECT_EQ(sel.pickPoint, QPoint(12, 34));
            EXPECT_TRUE(pass == "select2d" || sel.modelView == ctx.modelView);
            EXPECT_TRUE(pass == "select2d" || sel.projection == ctx.projection);
        };
        run("m", "", "");
        EXPECT_EQ(seen, QSize(row.size, row.size));
    }
    probe.passes.clear();
    run("m", "", "");
    EXPECT_THAT(probe.passes, ElementsAre("select3d", "select2d"));
    probe.passes.clear();
    probe.setValue("something", "changed");
    run("m", "", "");
    EXPECT_THAT(probe.passes, ElementsAre("update", "resize", "select3d", "select2d"));
}

TEST_F(DispatchGLTest, ViewportWithoutAreaHitsNothing)
{
    ctx.viewport.height = 0;
    probe.passes.clear();
    run("Admguc", "", "");
    EXPECT_EQ(log.text, CLICK_NONE);
    EXPECT_THAT(probe.passes, ElementsAre());
}

TEST_F(DispatchGLTest, CopiesShareAndMovesTakeHostAndHandlers)
{
    run("Amd", "", "");
    OruSceneController copy(scene.controller());
    OruSceneController moved(std::move(copy));
    const auto drag = [&](OruSceneController& controller) {
        log.text.clear();
        controller.OnMouseDrag(scene.render, ctx);
        return log.text;
    };
    const std::string told = "A.OnDrag(7,0,0) host.OnDrag(7,one,0,0)";
    EXPECT_EQ(drag(moved), told);
    EXPECT_EQ(drag(scene.controller()), told);
    EXPECT_EQ(drag(copy), ""); // NOLINT(bugprone-use-after-move): what is left is a controller without a grab
    copy = scene.controller();
    EXPECT_EQ(drag(copy), told);
    moved = std::move(copy);
    log.text.clear();
    copy.reset(second, scene.render); // NOLINT(bugprone-use-after-move): and without a live hover
    {
        const OruSceneController dying(scene.controller());
    }
    EXPECT_EQ(log.text, "");
    EXPECT_EQ(drag(moved), told);
    EXPECT_EQ(host.use_count(), 3); // the test's, the scene's and that of `moved`
}

TEST_F(DispatchGLTest, RecordsAreValuesWithAWeakHandler)
{
    OruSceneController::CurrentHitRecord record;
    EXPECT_EQ(record.hit.distance, -1.0);
    EXPECT_EQ(record.hit.name, OruVisHitRecord::INVALID_NAME);
    EXPECT_EQ(record.visualization, nullptr);
    EXPECT_FALSE(record.hasHandler());
    record.hit.name = 7;
    record.handler = a;
    record.visualization = one.get();
    OruSceneController::CurrentHitRecord copy(record);
    const OruSceneController::CurrentHitRecord moved(std::move(record));
    record = std::move(copy);
    EXPECT_TRUE(moved.hasHandler() && record.hasHandler());
    EXPECT_FALSE(copy.hasHandler()); // NOLINT(bugprone-use-after-move): the rest of it stays
    EXPECT_EQ(copy.hit.name, 7u);
    EXPECT_EQ(copy.visualization, one.get());
    a.reset();
    EXPECT_FALSE(moved.hasHandler() || record.hasHandler());
    EXPECT_EQ(moved.hit.name, 7u);
}

struct TriadRow
{
    const char* label;
    const char* renamedKey; ///< adaptor that is given the text of the label, too
    bool known;
    OruSceneZpr::Position position;
};

const TriadRow triadRows[] = {
    {"Iso", nullptr, true, OruSceneZpr::ViewIsometric},
    {"X", nullptr, true, OruSceneZpr::ViewX},
    {"Y", nullptr, true, OruSceneZpr::ViewY},
    {"Z", nullptr, true, OruSceneZpr::ViewZ},
    {"-X", nullptr, true, OruSceneZpr::ViewXReverse},
    {"-Y", nullptr, true, OruSceneZpr::ViewYReverse},
    {"-Z", nullptr, true, OruSceneZpr::ViewZReverse},
    {"x", nullptr, false, OruSceneZpr::ViewFit},
    {"", nullptr, false, OruSceneZpr::ViewFit},
    {"X", "labelIsometric", true, OruSceneZpr::ViewIsometric},
    {"-Z", "labelX", true, OruSceneZpr::ViewX},
    {"-Z", "labelYReverse", true, OruSceneZpr::ViewYReverse},
};

/// A triad whose labels lie wherever the test says.
class TriadClickGLTest : public DispatchGLTest
{
protected:
    TriadClickGLTest()
    {
        triad.visible.setValue(false);
        scene.render.visualizations.insert(&triad, true);
        triad.hitProperties.clear();
        probe.pickAction = [this](const std::string& pass, const OruVisualization::SelectContext&,
                                  OruVisHitRecordList& hits) {
            if (pass == "select2d") {
                hits.add(record, OruVisHitRecordList::Rank::Flat2d, 0.0, a, &triad);
            }
        };
        record.name = 700;
        ctx.modelView = Matrix::rotate(Vector3(1.0f, 2.0f, 3.0f), 77.0f);
        ctx.bounds = BoundingBox(Vector3(), Vector3(1.0f, 2.0f, 3.0f));
        log.yes = {"A.OnClick", "host.OnClick"};
    }

    OruVisTriad triad{scene.group};
    OruVisHitRecord record;
};

TEST_F(TriadClickGLTest, LabelsTurnTheViewAndTellNobody)
{
    const Matrix before = ctx.modelView;
    for (const TriadRow& row : triadRows) {
        SCOPED_TRACE(::testing::Message() << row.label << " " << (row.renamedKey ? row.renamedKey : ""));
        OruVisTriad texts(scene.group);
        if (row.renamedKey) {
            texts.setValue(row.renamedKey, row.label);
        }
        triad.hitProperties[700] =
            OruVisHitProperty(&texts, boost::make_shared<OruVisHitLabelQualifier>(QString(row.label)));
        ctx.modelView = before;
        scene.setViewpoint("viewpoint", before);
        OruSceneEventContext expected(ctx);
        if (row.known) {
            scene.zpr.zoomTo(ctx, row.position, expected.modelView);
        }
        EXPECT_EQ(step('c'), row.known);
        EXPECT_THAT(ctx.modelView, NearMatrix(expected.modelView, 0.0));
        EXPECT_EQ(scene.viewpoint("viewpoint"), expected.modelView);
        EXPECT_EQ(log.text, "");
    }
}

TEST_F(TriadClickGLTest, WhatIsNoLabelGoesNowhereAndWhatIsNoTriadGoesOn)
{
    const auto label = boost::make_shared<OruVisHitLabelQualifier>(QStringLiteral("Z"));
    const BoundingBox edgeOn(Vector3(), Vector3(0.0f, 0.0f, 1.0f));
    const struct
    {
        const char* name;
        unsigned int hitName;
        OruVisHitProperty property;
        BoundingBox shown;
        const char* expected;
    } rows[] = {
        {"no property", 701, {&triad, label}, {}, ""},
        {"no object", 700, {nullptr, label}, {}, ""},
        {"another object", 700, {one.get(), label}, {}, ""},
        {"no qualifier", 700, {&triad, nullptr}, {}, ""},
        {"another qualifier", 700, {&triad, boost::make_shared<OruVisHitProperty::IQualifier>()}, {}, ""},
        {"a view that can't be", 700, {&triad, label}, edgeOn, ""},
        {"the name of no object",
         OruVisHitRecord::INVALID_NAME,
         {&triad, label},
         {},
         "A.OnClick(16777215) host.OnClick(16777215,vis.triad,0)"},
    };
    const Matrix before = ctx.modelView;
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        record.name = row.hitName;
        triad.hitProperties.clear();
        triad.hitProperties[700] = row.property;
        ctx.zoomBounds = row.shown;
        log.text.clear();
        EXPECT_EQ(step('c'), row.expected[0] != '\0');
        EXPECT_EQ(log.text, row.expected);
        EXPECT_EQ(ctx.modelView, before);
    }
    a.reset();
    log.text.clear();
    record.name = 700;
    EXPECT_TRUE(step('c'));
    EXPECT_EQ(log.text, CLICK_NONE);
}

} // namespace
