#include "contracts/vis/OruVisList.h"
#include "contracts/vis/OruVisImage.h"
#include "contracts/vis/OruVisLightList.h"
#include "contracts/vis/OruVisPickVolume.h"
#include "contracts/vis/OruVisTriad.h"
#include "contracts/vis/OruVisViewpoint.h"
#include "tests/support/CpuTime.h"
#include "tests/vis/VisStage.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <optional>
#include <random>
#include <set>
#include <stdexcept>
#include <typeinfo>
#include <utility>
#include <vector>

using namespace kelvartest;
using Kelvar::Math::BoundingBox;
using Kelvar::Math::Matrix;
using Reach = OruVisualization::Reach;
using testing::ElementsAre;

namespace {

struct OruVisListTest : testing::Test
{
    VisStage stage;
    Probe::Log log;
    OruVisList list{stage.group, "list"};
    std::vector<std::unique_ptr<Probe>> entries;

    /// Adds an entry at the list's end.
    Probe& add(const char* name, Reach reach = Reach::Always)
    {
        entries.push_back(std::make_unique<Probe>(stage.group, name, log, reach));
        list.insert(entries.back().get(), true);
        return *entries.back();
    }

    Probe::Log drawn(const Matrix& modelView = Matrix())
    {
        log.clear();
        OruVisualization::DrawContext context = stage.draw();
        context.modelView = modelView;
        list.draw3d(context);
        return log;
    }

    static Probe::Log callsOf(const std::string& entry, Probe::Log calls)
    {
        const auto isOther = [&](const std::string& call) { return call.find(entry) == std::string::npos; };
        calls.erase(std::remove_if(calls.begin(), calls.end(), isOther), calls.end());
        return calls;
    }

    /// What a render does for one frame.
    Probe::Log frame(OruVisList& of)
    {
        log.clear();
        const OruVisualization::DrawContext context = stage.draw();
        if (of.watcher().modified()) {
            of.update(context);
            of.resize(context);
            of.watcher().reset();
        }
        of.draw3d(context);
        of.draw2d(context);
        return log;
    }
};

} // namespace

TEST_F(OruVisListTest, finds_entries_by_their_present_names)
{
    Probe member(stage.group, "a", log);
    Probe same(stage.group, "a", log);
    OruProperties plain(stage.group);
    EXPECT_TRUE(list.insert(&member, true));
    EXPECT_FALSE(list.insert(&same, true)) << "a name that is taken";
    EXPECT_FALSE(list.insert(&plain, true)) << "no visualization";
    EXPECT_FALSE(list.insert(static_cast<OruVisualization*>(nullptr), true));
    EXPECT_EQ(list["a"], &member);
    EXPECT_TRUE(member.rename("b"));
    EXPECT_EQ(list["a"], nullptr);
    EXPECT_EQ(const_cast<const OruVisList&>(list)["b"], &member);
    {
        Probe shortLived(stage.group, "c", log);
        list.insert(&shortLived, true);
    }
    EXPECT_EQ(list["c"], nullptr);
    EXPECT_THAT(drawn(), ElementsAre("draw3d b"));
    EXPECT_TRUE(list.remove(&member));
    EXPECT_FALSE(list.remove(&member));
    EXPECT_TRUE(drawn().empty());
}

TEST_F(OruVisListTest, makes_children_by_type)
{
    const QString types[] = {OruVisViewpoint::typeString, OruVisLight::typeString,
                             OruVisLightList::typeString, OruVisImage::typeString,
                             OruVisTriad::typeString,     OruVisList::typeString,
                             "of another library"};
    std::set<std::string> classes;
    for (const QString& type : types) {
        OruVisualization& made = list.child("entry " + type, type);
        EXPECT_EQ(made.type(), type);
        EXPECT_EQ(&list.child("entry " + type, "ignored"), &made) << "made twice: " << type.toStdString();
        classes.insert(typeid(made).name());
    }
    EXPECT_EQ(list.size(), 7U);
    EXPECT_EQ(classes.size(), 7U);
    EXPECT_THROW(list.child("a/b", "x"), std::invalid_argument);

    auto& lights = dynamic_cast<OruVisLightList&>(*list["entry vis.lights"]);
    OruVisLight& light = lights.child("light.1", OruVisLight::typeString);
    EXPECT_EQ(&lights.child("light.1", OruVisLight::typeString), &light);
    Probe other(stage.group, "p", log);
    EXPECT_FALSE(lights.insert(&other, true));
}

TEST_F(OruVisListTest, reaches_hidden_entries_by_update_and_resize_only)
{
    Probe& hidden = add("hidden");
    hidden.setBox(boxAt(5, 0, 0));
    add("shown").setBox(boxAt(0, 0, 0));
    EXPECT_EQ(list.bounds(), BoundingBox({-0.1f, -0.1f, -0.1f}, {5.1f, 0.1f, 0.1f}));
    hidden.visible.setValue(false);
    const OruVisualization::DrawContext context = stage.draw();
    const VisStage::Pick pick(stage, QPoint(100, 50), 3);
    list.update(context);
    list.resize(context);
    list.draw3d(context);
    list.draw2d(context);
    list.select3d(pick);
    list.select2d(pick);
    EXPECT_THAT(log, ElementsAre("update hidden", "update shown", "resize hidden", "resize shown",
                                 "draw3d shown", "draw2d shown", "select3d shown", "select2d shown"));
    EXPECT_EQ(list.bounds(), boxAt(0, 0, 0));
}

TEST_F(OruVisListTest, reaches_what_others_draw_by_picks_in_3d_only)
{
    Probe& shared = add("shared", Reach::UnderPick);
    shared.setBox(boxAt(0, 0, 0));
    add("aside", Reach::UnderPick).setBox(boxAt(5, 0, 0));
    add("nowhere", Reach::UnderPick);
    const VisStage::Pick pick(stage, QPoint(100, 50), 3);
    const auto pass = [&] {
        frame(list);
        list.select3d(pick);
        list.select2d(pick);
        return log;
    };
    EXPECT_THAT(pass(), ElementsAre("select3d shared"));
    EXPECT_EQ(list.bounds(), BoundingBox({-0.1f, -0.1f, -0.1f}, {5.1f, 0.1f, 0.1f}));
    shared.setReach(Reach::WhenInView);
    EXPECT_THAT(pass(), ElementsAre("update shared", "resize shared", "draw3d shared", "draw2d shared",
                                    "select3d shared", "select2d shared"))
        << "from the next frame on, and prepared";
    shared.setReach(Reach::UnderPick);
    EXPECT_THAT(pass(), ElementsAre("select3d shared"));
}

TEST_F(OruVisListTest, asks_for_bounds_only_where_something_changed)
{
    OruVisList inner(stage.group, "inner");
    Probe still(stage.group, "still", log);
    still.setBox(boxAt(0, 0, 0));
    inner.insert(&still, true);
    list.insert(&inner, true);
    Probe& moved = add("moved");
    moved.setBox(boxAt(1, 0, 0));
    EXPECT_TRUE(list.watcher().modified());
    list.watcher().reset();
    list.bounds();
    list.bounds();
    drawn();
    EXPECT_EQ(still.asked, 1);
    EXPECT_EQ(moved.asked, 1);
    EXPECT_FALSE(list.watcher().modified());

    moved.setBox(boxAt(3, 0, 0));
    EXPECT_TRUE(list.watcher().modified());
    EXPECT_EQ(list.bounds().max().x, 3.1f);
    EXPECT_EQ(still.asked, 1);
    EXPECT_EQ(moved.asked, 2);

    still.setBox(boxAt(-7, 0, 0));
    EXPECT_EQ(list.bounds().min().x, -7.1f) << "a change in a list within the list";
    list.remove(&moved);
    EXPECT_EQ(list.bounds(), boxAt(-7, 0, 0));
}

TEST_F(OruVisListTest, stacks_2d_entries_by_order_and_then_by_place)
{
    const std::pair<const char*, int> orders[] = {{"a", 5}, {"b", -1}, {"c", 0}, {"d", 5}, {"e", 0}};
    for (const auto& row : orders) {
        add(row.first).order = row.second;
    }
    list.draw2d(stage.draw());
    EXPECT_THAT(log, ElementsAre("draw2d b", "draw2d c", "draw2d e", "draw2d a", "draw2d d"));
}

TEST_F(OruVisListTest, draws_the_group_in_view_nearest_first_between_the_others)
{
    add("background").setBox(boxAt(9, 0, 0));
    Probe& far = add("far", Reach::WhenInView);
    far.setBox(boxAt(0, 0, -0.8f));
    add("always").setBox(boxAt(9, 0, 0));
    add("near", Reach::WhenInView).setBox(boxAt(0, 0, 0.8f));
    Probe& outside = add("outside", Reach::WhenInView);
    outside.setBox(boxAt(9, 0, 0));
    add("unknown", Reach::WhenInView);
    EXPECT_THAT(drawn(), ElementsAre("draw3d background", "draw3d near", "draw3d far", "draw3d always",
                                     "draw3d unknown"));
    EXPECT_THAT(
        drawn(Matrix::rotate(Kelvar::Math::VectorY, 180.0f)),
        ElementsAre("draw3d background", "draw3d far", "draw3d near", "draw3d always", "draw3d unknown"));

    log.clear();
    list.draw2d(stage.draw());
    EXPECT_THAT(log, testing::Not(testing::Contains("draw2d outside"))) << "the 2D pass of the same frame";
    log.clear();
    list.draw2d(stage.draw());
    EXPECT_THAT(log, testing::Contains("draw2d outside")) << "a 2D pass of its own";

    far.setReach(Reach::Always);
    outside.setBox(boxAt(0, 0, 0.9f));
    EXPECT_THAT(drawn(), ElementsAre("draw3d background", "draw3d far", "draw3d always", "draw3d outside",
                                     "draw3d near", "draw3d unknown"));
}

TEST_F(OruVisListTest, draws_transparent_entries_of_all_lists_behind_solid_ones_farthest_first)
{
    OruVisList inner(stage.group, "inner");
    Probe innerGlass(stage.group, "inner glass", log, Reach::WhenInView);
    Probe innerSolid(stage.group, "inner solid", log);
    add("nowhere").transparent = true;
    add("near").setBox(boxAt(0, 0, 0.5f));
    list.insert(&inner, true);
    inner.insert(&innerGlass, true);
    inner.insert(&innerSolid, true);
    add("far").setBox(boxAt(0, 0, -0.5f));
    add("solid");
    for (Probe* probe : {entries[1].get(), entries[2].get(), &innerGlass}) {
        probe->transparent = true;
    }
    innerGlass.setBox(boxAt(0, 0, 0.1f));
    const auto transparentOf = [&](const Matrix& view) {
        const Probe::Log calls = drawn(view);
        return Probe::Log(calls.end() - 4, calls.end());
    };
    EXPECT_THAT(transparentOf(Matrix()), ElementsAre("transparent nowhere", "transparent far",
                                                     "transparent inner glass", "transparent near"));
    EXPECT_THAT(
        transparentOf(Matrix::rotate(Kelvar::Math::VectorY, 180.0f)),
        ElementsAre("transparent nowhere", "transparent near", "transparent inner glass", "transparent far"));
    EXPECT_EQ(log.size(), 10U) << "all were asked to draw first";
    innerGlass.draw3d(stage.draw());
    EXPECT_FALSE(innerGlass.deferred) << "a context without a list";
}

TEST_F(OruVisListTest, passes_over_transparent_entries_that_went_while_they_waited)
{
    struct Row
    {
        const char* name;
        /// True: by an entry behind in the list; false: by a transparent one that lies farther away.
        bool bySolid;
        std::function<void()> change;
        std::size_t left;
    };
    std::unique_ptr<OruVisList> outer, inner, elsewhere;
    std::unique_ptr<Probe> glass;
    const Row rows[] = {
        {"nothing", true, [] {}, 1},
        {"the entry dies", true, [&] { glass.reset(); }, 0},
        {"the entry is hidden", true, [&] { glass->visible.setValue(false); }, 0},
        {"its list is hidden", false, [&] { inner->visible.setValue(false); }, 0},
        {"the entry is taken out", true, [&] { inner->remove(glass.get()); }, 0},
        {"its list is taken out", false, [&] { outer->remove(inner.get()); }, 0},
        {"its list dies", true, [&] { inner.reset(); }, 0},
        {"the outer list dies", true, [&] { outer.reset(); }, 0},
        {"the outer list dies", false, [&] { outer.reset(); }, 0},
        {"it comes anew", true, [&] { inner->remove(glass.get()), elsewhere->insert(glass.get(), true); }, 0},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        Probe solid(stage.group, "solid", log);
        Probe farther(stage.group, "farther", log);
        glass = std::make_unique<Probe>(stage.group, "glass", log);
        inner = std::make_unique<OruVisList>(stage.group, "inner");
        elsewhere = std::make_unique<OruVisList>(stage.group, "elsewhere");
        outer = std::make_unique<OruVisList>(stage.group, "outer");
        outer->insert(inner.get(), true);
        outer->insert(elsewhere.get(), true);
        outer->insert(&farther, true);
        outer->insert(&solid, true);
        inner->insert(glass.get(), true);
        glass->setBox(boxAt(0, 0, 0));
        farther.setBox(boxAt(0, 0, -0.5f));
        glass->transparent = farther.transparent = true;
        (row.bySolid ? solid : farther).action = [&] {
            if (row.bySolid || log.back() == "transparent farther") {
                row.change();
            }
        };
        log.clear();
        outer->draw3d(stage.draw());
        EXPECT_EQ(std::count(log.begin(), log.end(), "transparent glass"), row.left);
    }
}

TEST_F(OruVisListTest, forgets_who_waited_when_an_entry_throws)
{
    add("glass").transparent = true;
    Probe& thrower = add("thrower");
    const OruVisualization::DrawContext context = stage.draw();
    for (const bool second : {false, true}) {
        thrower.transparent = second;
        thrower.action = [&] {
            if (!second || log.back() == "transparent thrower") {
                throw std::runtime_error("on purpose");
            }
        };
        EXPECT_THROW(list.draw3d(context), std::runtime_error);
        thrower.action = [] {};
        log.clear();
        list.draw3d(context);
        EXPECT_EQ(std::count(log.begin(), log.end(), "transparent glass"), 1);
    }
}

TEST_F(OruVisListTest, goes_on_over_what_is_left_when_an_entry_takes_others_out)
{
    auto inner = std::make_unique<OruVisList>(stage.group, "inner");
    Probe killer(stage.group, "killer", log);
    Probe orphan(stage.group, "orphan", log);
    inner->insert(&killer, true);
    inner->insert(&orphan, true);
    add("passed");
    list.insert(inner.get(), true);
    Probe& remover = add("remover");
    remover.action = [&] {
        list.remove(entries.front().get());
        list.remove(&remover);
        entries.erase(entries.begin() + 2);
    };
    add("victim");
    add("last");
    killer.action = [&] { inner.reset(); };
    EXPECT_THAT(frame(list), ElementsAre("update passed", "update killer", "update remover", "update last",
                                         "resize last", "draw3d last", "draw2d last"));
}

TEST_F(OruVisListTest, knows_a_newcomer_from_the_dead_at_its_address)
{
    std::optional<Probe> entry(std::in_place, stage.group, "old", log);
    list.insert(&*entry, true);
    EXPECT_THAT(drawn(), ElementsAre("draw3d old"));
    entry.emplace(stage.group, "new", log);
    list.insert(&*entry, true);
    EXPECT_THAT(drawn(), ElementsAre("draw3d new"));
}

TEST_F(OruVisListTest, loses_its_entries_at_the_same_cost_however_many_there_are)
{
    struct Objects
    {
        Objects(OruModifiedGroup& group, int count)
            : list(std::make_unique<OruVisList>(group, "objects"))
        {
            for (int number = 0; number < count; ++number) {
                entries.push_back(&list->child(QString::number(number), "object"));
            }
            list->bounds();
        }
        std::unique_ptr<OruVisList> list;
        std::vector<OruProperties*> entries;
    };
    const std::pair<const char*, std::function<void(Objects&)>> cases[] = {
        {"first ones first",
         [](Objects& all) {
             std::for_each(all.entries.begin(), all.entries.end(), [&](auto* one) { all.list->erase(one); });
         }},
        {"last ones first",
         [](Objects& all) {
             std::for_each(all.entries.rbegin(), all.entries.rend(),
                           [&](auto* one) { all.list->erase(one); });
         }},
        {"with the list", [](Objects& all) { all.list.reset(); }},
    };
    for (const auto& [what, lose] : cases) {
        std::optional<Objects> objects;
        const auto costOf = [&, &lose = lose](int count) {
            return cpuTime([&] { objects.emplace(stage.group, count); }, [&] { lose(*objects); });
        };
        const double few = costOf(4000);
        EXPECT_LT(costOf(40000) / few, linear) << what;
    }
}

TEST_F(OruVisListTest, takes_in_who_comes_during_a_pass_by_update_and_resize)
{
    for (const std::string pass : {"update", "resize", "draw3d", "draw2d"}) {
        for (const bool nested : {false, true}) {
            SCOPED_TRACE(pass + (nested ? " into a list that was reached before" : ""));
            OruVisList outer(stage.group, "outer");
            OruVisList inner(stage.group, "inner");
            Probe host(stage.group, "host", log);
            Probe comer(stage.group, "comer", log);
            comer.setBox(boxAt(0, 0, 0));
            outer.insert(&inner, true);
            outer.insert(&host, true);
            host.action = [&] {
                if (log.back() == pass + " host" && (nested ? inner : outer).insert(&comer, true)) {
                    EXPECT_FALSE(outer.bounds().defined());
                }
            };
            const std::vector<std::string> all = {"update comer", "resize comer", "draw3d comer",
                                                  "draw2d comer"};
            EXPECT_EQ(callsOf("comer", frame(outer)), pass == "update" ? all : Probe::Log());
            EXPECT_EQ(callsOf("comer", frame(outer)).size(), pass == "update" ? 2U : 4U);
            EXPECT_EQ(outer.bounds(), boxAt(0, 0, 0));
        }
    }
}

TEST_F(OruVisListTest, reaches_all_that_a_walk_over_all_boxes_would_reach)
{
    std::mt19937 random(7);
    const auto number = [&](float low, float high) {
        return std::uniform_real_distribution<float>(low, high)(random);
    };
    std::vector<BoundingBox> boxes(400);
    for (std::size_t i = 0; i < boxes.size(); ++i) {
        boxes[i] = boxAt(number(-2, 2), number(-2, 2), number(-2, 2), number(0.0f, 0.2f));
        add(std::to_string(i).c_str(), Reach::WhenInView).setBox(boxes[i]);
    }
    Matrix perspective;
    perspective(2, 2) = -1.2f;
    perspective(2, 3) = -1.0f;
    perspective(3, 2) = -2.2f;
    perspective(3, 3) = 0.0f;
    for (int round = 0; round < 60; ++round) {
        const std::size_t moved = random() % boxes.size();
        boxes[moved] = boxAt(number(-2, 2), number(-2, 2), number(-2, 2), 0.1f);
        entries[moved]->setBox(boxes[moved]);
        VisStage::Pick pick(stage, QPoint(static_cast<int>(random() % 200), static_cast<int>(random() % 100)),
                            1 + round % 9);
        pick.modelView = Matrix::rotate({number(-1, 1), number(-1, 1), number(-1, 1)}, number(0, 360)) *
                         Matrix::scale(number(0.2f, 3.0f)) * Matrix::translate({0, 0, number(-4, 0)});
        pick.projection = round % 2 ? perspective : Matrix();
        log.clear();
        list.select3d(pick);
        const std::set<std::string> reached(log.begin(), log.end());
        EXPECT_EQ(reached.size(), log.size()) << "round " << round;

        const OruVisPickVolume window(pick);
        for (std::size_t i = 0; i < boxes.size(); ++i) {
            EXPECT_EQ(reached.count("select3d " + std::to_string(i)), window.meets(boxes[i]))
                << "round " << round << " box " << i;
        }
    }
}

namespace {

/// A list under random changes, and what it has to reach by a look at everything.
struct ChangingListTest : OruVisListTest
{
    std::mt19937 random{11};
    std::vector<BoundingBox> boxes;

    std::size_t one(std::size_t choices) { return random() % choices; }
    float place() { return static_cast<float>(one(400)) / 100.0f - 2.0f; }
    BoundingBox box() { return boxAt(place(), place(), place()); }
    Reach reach()
    {
        constexpr Reach reaches[] = {Reach::WhenInView, Reach::WhenInView, Reach::UnderPick, Reach::Always};
        return reaches[one(4)];
    }

    void addOne()
    {
        boxes.push_back(box());
        add(std::to_string(boxes.size() - 1).c_str(), reach()).setBox(boxes.back());
    }

    void change(std::size_t kinds)
    {
        const std::size_t i = one(entries.size());
        const std::function<void()> changes[] = {
            [&] { entries[i]->visible.setValue(!entries[i]->visible.value()); },
            [&] { entries[i]->setReach(reach()); },
            [&] { entries[i]->setBox(boxes[i] = box()); },
            [&] { entries[i]->setBox(boxes[i] = BoundingBox()); },
            [&] { list.remove(entries[i].get()); },
            [&] { addOne(); },
        };
        changes[one(kinds)]();
    }

    /// The numbers of the entries that are in the list and visible.
    std::vector<std::size_t> shown() const
    {
        std::vector<std::size_t> numbers;
        for (std::size_t i = 0; i < entries.size(); ++i) {
            if (entries[i]->parent() && entries[i]->visible.value()) {
                numbers.push_back(i);
            }
        }
        return numbers;
    }

    /// Who is reached with `volume`, in order.
    Probe::Log expected(const std::string& call, const OruVisViewVolume& volume, bool picked) const
    {
        std::vector<std::pair<float, std::size_t>> group;
        std::vector<std::size_t> all;
        std::optional<std::size_t> groupPlace;
        for (const std::size_t i : shown()) {
            const Reach how = entries[i]->reach();
            if (how != Reach::Always && boxes[i].defined()) {
                groupPlace = groupPlace.value_or(all.size());
                if (volume.meets(boxes[i]) && (picked || how == Reach::WhenInView)) {
                    group.emplace_back(-boxes[i].max().z, i);
                }
            } else if (how != Reach::UnderPick) {
                all.push_back(i);
            }
        }
        std::sort(group.begin(), group.end());
        for (std::size_t i = 0; i < group.size(); ++i) {
            all.insert(all.begin() + static_cast<std::ptrdiff_t>(*groupPlace + i), group[i].second);
        }
        Probe::Log calls;
        for (const std::size_t i : all) {
            calls.push_back(call + " " + std::to_string(i));
        }
        return calls;
    }
};

} // namespace

TEST_F(ChangingListTest, reaches_the_same_as_a_look_at_all)
{
    for (int i = 0; i < 300; ++i) {
        addOne();
    }
    const OruVisViewVolume view = OruVisViewVolume::ofView(Matrix(), Matrix(), stage.viewport);
    const VisStage::Pick pick(stage, QPoint(100, 50), 60);
    for (int round = 0; round < 300; ++round) {
        // Now and then so many that all are asked again.
        for (std::size_t left = round % 20 == 0 ? 90 : 1 + one(3); left > 0; --left) {
            change(round % 3 == 0 ? 6 : 4);
        }
        if (one(4) > 0) {
            ASSERT_EQ(drawn(), expected("draw3d", view, false)) << "round " << round;
        }
        log.clear();
        list.select3d(pick);
        ASSERT_EQ(log, expected("select3d", OruVisPickVolume(pick).volume(), true)) << "round " << round;
        BoundingBox all;
        for (const std::size_t i : shown()) {
            all.add(boxes[i]);
        }
        ASSERT_EQ(list.bounds(), all) << "round " << round;
    }
}
