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
#include <stdexcept>
#include <utility>

using namespace kelvartest;
using Kelvar::Math::BoundingBox;
using Kelvar::Math::Matrix;
using Kelvar::Math::Vector3;
using Kelvar::UI::Toolkit::KeyModifier;
using ::testing::ElementsAre;

namespace {

/// Runs scripts of one letter a step:
///   A B S N I -   what lies under the pointer from now on
///   d g m u c     press, drag, move, release, click
///   h s n         the host's controller becomes the first one, the second one, none
///   k K l         the first or the second object dies with its handler; the second one's handler alone
///   t V W E       throw; set the viewpoint; draw; an event of the scene
///   !             what was set as a reaction counts from here on
class DispatchGLTest : public DispatchTest
{
protected:
    bool step(char letter)
    {
        const auto found = steps.find(letter);
        if (found == steps.end()) {
            under = letter;
            return false;
        }
        return found->second();
    }

    void prepare(const std::string& call, const std::string& reaction)
    {
        if (reaction == "1") {
            log.yes.insert(call);
            return;
        }
        log.reactions[call] = [this, reaction] {
            for (const char letter : reaction) {
                step(letter);
            }
        };
    }

    /// The result of the last step. An exception that reaches the host is noted.
    bool run(const std::string& script, const std::string& when = std::string())
    {
        const size_t split = std::min(when.find('='), when.size());
        const auto arm = [&] {
            prepare(when.substr(0, split), when.substr(std::min(split + 1, when.size())));
            return false;
        };
        if (!when.empty() && script.find('!') == std::string::npos) {
            arm();
        }
        bool result = false;
        for (const char letter : script) {
            try {
                result = letter == '!' ? arm() : step(letter);
            } catch (const std::runtime_error&) {
                log.text += log.text.empty() ? "throw" : " throw";
            }
        }
        return result;
    }

    const std::map<char, std::function<bool()>> steps = {
        {'d', [this] { return scene.controller().OnMouseDown(scene.render, ctx); }},
        {'g', [this] { return scene.controller().OnMouseDrag(scene.render, ctx); }},
        {'m', [this] { return scene.controller().OnMouseMove(scene.render, ctx, ctx.tooltip); }},
        {'u', [this] { return scene.controller().OnMouseUp(scene.render, ctx); }},
        {'c', [this] { return scene.controller().OnMouseClick(scene, ctx); }},
        {'h', [this] { return scene.controller().reset(host, scene.render), false; }},
        {'s', [this] { return scene.controller().reset(second, scene.render), false; }},
        {'n', [this] { return scene.controller().reset(nullptr, scene.render), false; }},
        {'k', [this] { return a.reset(), one.reset(), false; }},
        {'K', [this] { return b.reset(), two.reset(), false; }},
        {'l', [this] { return b.reset(), false; }},
        {'t', []() -> bool { throw std::runtime_error("of the test"); }},
        {'V', [this] { return scene.setViewpoint("viewpoint", Matrix::scale(3.0f)); }},
        {'W', [this] { return scene.drawGl(ctx), false; }},
        {'E', [this] { return scene.mouseMove(ctx); }},
    };
};

struct Row
{
    const char* name;
    const char* script;
    const char* when;     ///< call and reaction to it, "call=script"; "call=1": it is answered with true
    const char* expected; ///< who was told, and "yes" if the last result was true
};

#define ENTER_A "A.enter(7) host.enter(7,one)"
#define LEAVE_A "A.leave(7) host.leave(7,one)"
#define ENTER_B "B.enter(9) host.enter(9,two)"
#define DRAG_A "A.drag(7,3,-4) host.drag(7,one,3,-4)"
#define DRAG_B "B.drag(9,3,-4) host.drag(9,two,3,-4)"
#define DROP_AB "A.drop(7,9) host.drop(7,9,one,two)"
#define RELEASE_A "A.release(7) host.release(7,one)"
#define CLICK_A "A.click(7) host.click(7,one,0)"
#define CLICK_NONE "host.click(16777215,null,0)"

const Row callRows[] = {
    {"press tells nobody", "Ad", "host.drag=1", ""},
    {"press without a handler", "NdgBu", "", ""},
    {"second press keeps the first grab", "AdBdg", "", DRAG_A},
    {"press over nothing keeps the grab", "Ad-dg", "", DRAG_A},
    {"drag, handler says yes", "Adg", "A.drag=1", DRAG_A " yes"},
    {"drag, host says yes", "Adg", "host.drag=1", DRAG_A " yes"},
    {"release, handler says yes", "Adu", "A.release=1", RELEASE_A " yes"},
    {"release, host says yes", "Adu", "host.release=1", RELEASE_A " yes"},
    {"release over nothing", "Ad-u", "", RELEASE_A},
    {"release ends the grab", "Adugu", "", RELEASE_A},
    {"release without a grab", "Au", "", ""},
    {"release over the same name", "AdSu", "", RELEASE_A},
    {"drop, handler says yes", "AdBu", "A.drop=1", DROP_AB " " RELEASE_A " yes"},
    {"drop, host is not asked", "AdBu", "host.drop=1", DROP_AB " " RELEASE_A},
    {"drop on one without a handler", "AdNu", "", "A.drop(7,11) host.drop(7,11,one,two) " RELEASE_A},
    {"drop on the name of no object", "AdIu", "",
     "A.drop(7,16777215) host.drop(7,16777215,one,two) " RELEASE_A},
    {"drop without a host", "nAdBu", "", "A.drop(7,9) A.release(7)"},
    {"hover without a handler", "Nm", "host.enter=1", ""},
    {"enter, handler says yes", "Am", "A.enter=1", ENTER_A " yes"},
    {"enter, host says yes", "Am", "host.enter=1", ENTER_A " yes"},
    {"stay", "Amm", "", ENTER_A " " LEAVE_A " " ENTER_A},
    {"on to another", "AmBm", "", ENTER_A " " LEAVE_A " " ENTER_B},
    {"leave, handler says yes", "AmBm", "A.leave=1", ENTER_A " " LEAVE_A " " ENTER_B " yes"},
    {"leave, host says yes", "Am-m", "host.leave=1", ENTER_A " " LEAVE_A " yes"},
    {"left for good, told again", "Am-mm", "", ENTER_A " " LEAVE_A " " LEAVE_A},
    {"on to one without a handler", "AmNmBm", "", ENTER_A " " LEAVE_A " " LEAVE_A " " ENTER_B},
    {"hover without a host", "nAmm", "", "A.enter(7) A.leave(7) A.enter(7)"},
    {"click, handler says yes", "Ac", "A.click=1", CLICK_A " yes"},
    {"click, host says yes", "Ac", "host.click=1", CLICK_A " yes"},
    {"click without a host", "nAc", "A.click=1", "A.click(7) yes"},
    {"click on nothing", "-c", "", CLICK_NONE},
    {"click on nothing, host says yes", "-c", "host.click=1", CLICK_NONE " yes"},
    {"click on nothing without a host", "n-c", "", ""},
    {"click without a handler", "Nc", "host.click=1", CLICK_NONE " yes"},
    {"click leaves grab and hover", "AmdBcgm", "",
     ENTER_A " B.click(9) host.click(9,two,0) " DRAG_A " " LEAVE_A " " ENTER_B},
    {"reset ends what the old host saw", "AmdsBgu", "",
     ENTER_A " A.release(7) A.leave(7) A.drag(7,3,-4) second.drag(7,one,3,-4) A.drop(7,9) "
             "second.drop(7,9,one,two) A.release(7) second.release(7,one)"},
    {"reset to the same", "Amdhh", "", ENTER_A},
    {"reset to none, twice", "Amdnn", "", ENTER_A " A.release(7) A.leave(7)"},
    {"reset with no live record", "Amdkn", "", ENTER_A},
    {"held object dies", "AdkguB", "", ""},
    {"stale grab gives way", "AdkBdg", "", DRAG_B},
    {"hovered object dies", "AmkBm", "", ENTER_A " " ENTER_B},
    {"dies in its drag", "Adgg", "A.drag=k", "A.drag(7,3,-4) host.drag(7,null,3,-4)"},
    {"dies in its enter", "Amm", "A.enter=k-", "A.enter(7) host.enter(7,null)"},
    {"dies in its leave", "AmBm", "A.leave=k", ENTER_A " A.leave(7) host.leave(7,null) " ENTER_B},
    {"dies between leave and enter", "Amm", "host.leave=k", ENTER_A " " LEAVE_A},
    {"next one dies in the leave", "AmBm", "A.leave=K", ENTER_A " " LEAVE_A},
    {"dies in the hit test of a move", "Am!Bm", "pick=k", ENTER_A " " ENTER_B},
    {"dies in the hit test of a release", "Ad!Bu", "pick=k", "host.drop(7,9,null,two) host.release(7,null)"},
    {"dies in its drop", "AdBu", "A.drop=k", "A.drop(7,9) host.drop(7,9,null,two) host.release(7,null)"},
    {"target loses its handler in the drop", "AdBu", "A.drop=l", DROP_AB " " RELEASE_A},
    {"target dies in the drop", "AdBu", "A.drop=K", DROP_AB " " RELEASE_A},
    {"target dies in the hit test", "Ad!Bu", "pick!=K", DROP_AB " " RELEASE_A},
    {"dies in the host's drop", "AdBu", "host.drop=k", DROP_AB " host.release(7,null)"},
    {"dies in its release", "Adug", "A.release=k", "A.release(7) host.release(7,null)"},
    {"dies in its click", "Ac", "A.click=k", "A.click(7) host.click(7,null,0)"},
    {"dies in the hit test of a click", "Ac", "pick=k", CLICK_NONE},
    {"dies in a reset's release", "Amdng", "A.release=k", ENTER_A " A.release(7)"},
    {"leave throws", "AmBmm", "A.leave=t", ENTER_A " A.leave(7) throw " LEAVE_A " " ENTER_B},
    {"enter throws", "AmAm", "A.enter=t", "A.enter(7) throw " LEAVE_A " " ENTER_A},
    {"reset throws and keeps the host", "Adng", "A.release=t", "A.release(7) throw " DRAG_A},
    {"handler replaces the host", "Adg", "A.drag=s", "A.drag(7,3,-4) A.release(7) second.drag(7,one,3,-4)"},
    {"host replaces itself", "Adgg", "host.drag=n", DRAG_A " A.release(7) A.drag(7,3,-4)"},
    {"reset out of a reset", "Amdng", "A.release=s", ENTER_A " A.release(7) A.leave(7) A.drag(7,3,-4)"},
    {"event out of a reset out of a reset", "Amdn", "A.release=sg",
     ENTER_A " A.release(7) A.drag(7,3,-4) second.drag(7,one,3,-4) A.leave(7)"},
    {"host goes in its click", "Ac-c", "host.click=n", CLICK_A},
    {"viewpoint and draw out of a drag", "Adg", "A.drag=VW", DRAG_A},
    {"draw out of an enter", "Am-m", "host.enter=WV", ENTER_A " " LEAVE_A},
    {"move out of a leave", "AmBm", "A.leave=m",
     ENTER_A " A.leave(7) A.leave(7) host.leave(7,one) " ENTER_B " host.leave(7,one) " ENTER_B},
    {"release out of a drop", "AdBu", "A.drop=Au",
     "A.drop(7,9) A.release(7) host.release(7,one) host.drop(7,9,one,two) " RELEASE_A},
    {"event out of a click", "Ac", "A.click=E", "A.click(7) " ENTER_A " host.click(7,one,0)"},
    {"dies and goes on with an event of its own", "Adg", "A.drag=kg",
     "A.drag(7,3,-4) " DRAG_A " host.drag(7,null,3,-4)"},
    {"press out of a release grabs nothing", "AdBug", "host.release=d", DROP_AB " " RELEASE_A},
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
        if (pass == "select2d") {
            log.react("pick!");
        }
    };
    for (const Row& row : callRows) {
        SCOPED_TRACE(row.name);
        renew();
        const bool result = run(row.script, row.when);
        EXPECT_EQ(log.text + (result ? " yes" : ""), row.expected);
        EXPECT_TRUE(log.reactions.empty()) << row.when << " did not come";
        EXPECT_EQ(gl.faults(), "");
        EXPECT_TRUE(!text || !text->selectMode());
    }
}

TEST_F(DispatchGLTest, CallsCarryEditorBuilderAndTooltip)
{
    scene.render.decimalSeparator.setValue(0x100 + ',');
    scene.render.significantDigits.setValue(3);
    under = 'A';
    ctx.tooltip = "was ";
    log.yes = {"A.leave"};
    log.reactions = {{"A.enter", [this] { *log.tooltip += "<" + log.builder->number(0.12345) + ">"; }},
                     {"host.enter", [this] { *log.tooltip += "host"; }},
                     {"A.leave", [this] {
                          EXPECT_TRUE(log.tooltip->isNull());
                          *log.tooltip = "lost";
                      }}};
    run("mdcBuAdn");
    EXPECT_TRUE(log.reactions.empty());
    EXPECT_EQ(ctx.tooltip, "was <0,123>host");
    EXPECT_THAT(log.editors, ElementsAre(editor.get(), editor.get(), editor.get(), editor.get()));
}

TEST_F(DispatchGLTest, ClickTellsTheHostOfTheFirstModifierAlone)
{
    for (const int modifier : {0, 1, 2, 3, -1}) {
        log.text.clear();
        ctx.mouse.setModifier(static_cast<KeyModifier>(modifier));
        run("-c");
        EXPECT_EQ(log.text, modifier == 1 ? "host.click(16777215,null,1)" : CLICK_NONE) << modifier;
    }
}

TEST_F(DispatchGLTest, HitTestBringsThePickUpToDate)
{
    const std::pair<const char*, int> sizes[] = {{"3", 3},     {"3.9", 3}, {"0.9", 0},
                                                 {"-2.5", -2}, {"nan", 0}, {"1e30", 2147483520}};
    ctx.modelView = Matrix::scale(0.5f);
    ctx.projection = Matrix::scale(0.25f);
    ctx.mouse.move(QPoint(12, 34), KeyModifier());
    QSize seen;
    probe.pickAction = [&](const std::string& pass, const OruVisualization::SelectContext& sel,
                           OruVisHitRecordList&) {
        seen = sel.pickSize;
        EXPECT_EQ(sel.pickPoint, QPoint(12, 34));
        EXPECT_TRUE(pass == "select2d" || sel.modelView == ctx.modelView);
        EXPECT_TRUE(pass == "select2d" || sel.projection == ctx.projection);
    };
    for (const auto& row : sizes) {
        scene.render.setValue("pickSize", row.first);
        run("m");
        EXPECT_EQ(seen, QSize(row.second, row.second)) << row.first;
    }
    probe.passes.clear();
    run("m");
    EXPECT_THAT(probe.passes, ElementsAre("select3d", "select2d"));
    probe.passes.clear();
    probe.setValue("something", "changed");
    run("m");
    EXPECT_THAT(probe.passes, ElementsAre("update", "resize", "select3d", "select2d"));
}

TEST_F(DispatchGLTest, ViewportWithoutAreaHitsNothing)
{
    ctx.viewport.height = 0;
    probe.passes.clear();
    run("Admguc");
    EXPECT_EQ(log.text, CLICK_NONE);
    EXPECT_THAT(probe.passes, ElementsAre());
}

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
        log.names[&triad] = "triad";
        log.yes = {"A.click", "host.click"};
    }

    OruVisTriad triad{scene.group};
    OruVisHitRecord record;
};

TEST_F(TriadClickGLTest, LabelsTurnTheViewAndTellNobody)
{
    const struct
    {
        const char* label;
        const char* renamedKey; ///< adaptor that is given the text of the label, too
        int position;           ///< -1: no view has that label
    } rows[] = {{"Iso", nullptr, 6},        {"X", nullptr, 0},   {"Y", nullptr, 2},
                {"Z", nullptr, 4},          {"-X", nullptr, 1},  {"-Y", nullptr, 3},
                {"-Z", nullptr, 5},         {"x", nullptr, -1},  {"", nullptr, -1},
                {"X", "labelIsometric", 6}, {"-Z", "labelX", 0}, {"-Z", "labelYReverse", 3}};
    const Matrix before = ctx.modelView;
    for (const auto& row : rows) {
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
        if (row.position >= 0) {
            scene.zpr.zoomTo(ctx, static_cast<OruSceneZpr::Position>(row.position), expected.modelView);
        }
        EXPECT_EQ(step('c'), row.position >= 0);
        EXPECT_THAT(ctx.modelView, NearMatrix(expected.modelView, 0.0));
        EXPECT_EQ(scene.viewpoint("viewpoint"), expected.modelView);
        EXPECT_EQ(log.text, "");
    }
}

TEST_F(TriadClickGLTest, WhatIsNoLabelGoesNowhereAndWhatIsNoTriadGoesOn)
{
    const auto label = boost::make_shared<OruVisHitLabelQualifier>(QStringLiteral("Z"));
    const BoundingBox edgeOn(Vector3(), Vector3(0.0f, 0.0f, 1.0f));
    const struct // NOLINT: the columns read better in this order
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
        {"no name", 0xFFFFFF, {&triad, label}, {}, "A.click(16777215) host.click(16777215,triad,0)"},
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
