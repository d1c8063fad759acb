#include "contracts/vis/OruVisList.h"
#include "contracts/vis/OruVisImage.h"
#include "contracts/vis/OruVisLightList.h"
#include "contracts/vis/OruVisPickVolume.h"
#include "contracts/vis/OruVisTriad.h"
#include "contracts/vis/OruVisViewpoint.h"
#include "tests/vis/VisStage.h"

#include <gmock/gmock.h>

#include <memory>
#include <random>
#include <set>
#include <stdexcept>
#include <typeinfo>

using namespace kelvartest;
using Kelvar::Math::BoundingBox;
using Kelvar::Math::Matrix;
using Kelvar::Math::Vector3;
using Reach = OruVisualization::Reach;
using testing::ElementsAre;

namespace {

struct OruVisListTest : testing::Test
{
    VisStage stage;
    Probe::Log log;
    OruVisList list{stage.group, "list"};

    Probe::Log drawn(const Matrix& modelView = Matrix())
    {
        log.clear();
        OruVisualization::DrawContext context = stage.draw();
        context.modelView = modelView;
        list.draw3d(context);
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
    Probe shown(stage.group, "shown", log);
    Probe hidden(stage.group, "hidden", log);
    shown.setBox(boxAt(0, 0, 0));
    hidden.setBox(boxAt(5, 0, 0));
    list.insert(&shown, true);
    list.insert(&hidden, true);
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
    EXPECT_THAT(log, ElementsAre("update shown", "update hidden", "resize shown", "resize hidden",
                                 "draw3d shown", "draw2d shown", "select3d shown", "select2d shown"));
    EXPECT_EQ(list.bounds(), boxAt(0, 0, 0));
}

TEST_F(OruVisListTest, asks_for_bounds_only_where_something_changed)
{
    OruVisList inner(stage.group, "inner");
    Probe still(stage.group, "still", log);
    Probe moved(stage.group, "moved", log);
    still.setBox(boxAt(0, 0, 0));
    moved.setBox(boxAt(1, 0, 0));
    inner.insert(&still, true);
    list.insert(&inner, true);
    list.insert(&moved, true);
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
    struct Row
    {
        const char* name;
        int order;
    };
    std::vector<std::unique_ptr<Probe>> entries;
    for (const Row& row : {Row{"a", 5}, {"b", -1}, {"c", 0}, {"d", 5}, {"e", 0}}) {
        entries.push_back(std::make_unique<Probe>(stage.group, row.name, log));
        entries.back()->order = row.order;
        list.insert(entries.back().get(), true);
    }
    list.draw2d(stage.draw());
    EXPECT_THAT(log, ElementsAre("draw2d b", "draw2d c", "draw2d e", "draw2d a", "draw2d d"));
}

TEST_F(OruVisListTest, draws_the_group_in_view_nearest_first_between_the_others)
{
    struct Row
    {
        const char* name;
        Reach reach;
        float x, z;
        bool defined;
    };
    const Row rows[] = {
        {"background", Reach::Always, 9, 0, true},  {"far", Reach::WhenInView, 0, -0.8f, true},
        {"always", Reach::Always, 9, 0, true},      {"near", Reach::WhenInView, 0, 0.8f, true},
        {"outside", Reach::WhenInView, 9, 0, true}, {"unknown", Reach::WhenInView, 9, 0, false},
    };
    std::vector<std::unique_ptr<Probe>> entries;
    for (const Row& row : rows) {
        entries.push_back(std::make_unique<Probe>(stage.group, row.name, log, row.reach));
        if (row.defined) {
            entries.back()->setBox(boxAt(row.x, 0, row.z));
        }
        list.insert(entries.back().get(), true);
    }
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

    entries[1]->setReach(Reach::Always);
    entries[4]->setBox(boxAt(0, 0, 0.9f));
    EXPECT_THAT(drawn(), ElementsAre("draw3d background", "draw3d far", "draw3d always", "draw3d outside",
                                     "draw3d near", "draw3d unknown"));
}

TEST_F(OruVisListTest, ends_a_pass_in_which_an_entry_changes_the_list)
{
    Probe remover(stage.group, "remover", log);
    auto victim = std::make_unique<Probe>(stage.group, "victim", log);
    list.insert(&remover, true);
    list.insert(victim.get(), true);
    remover.action = [&] { victim.reset(); };
    EXPECT_THAT(drawn(), ElementsAre("draw3d remover"));
}

/// Every pixel that shows something of a box finds it, and after moves too.
TEST_F(OruVisListTest, reaches_all_that_a_walk_over_all_boxes_would_reach)
{
    std::mt19937 random(7);
    const auto number = [&](float low, float high) {
        return std::uniform_real_distribution<float>(low, high)(random);
    };
    std::vector<std::unique_ptr<Probe>> entries;
    std::vector<BoundingBox> boxes(400);
    for (std::size_t i = 0; i < boxes.size(); ++i) {
        boxes[i] = boxAt(number(-2, 2), number(-2, 2), number(-2, 2), number(0.0f, 0.2f));
        entries.push_back(
            std::make_unique<Probe>(stage.group, std::to_string(i).c_str(), log, Reach::WhenInView));
        entries.back()->setBox(boxes[i]);
        list.insert(entries.back().get(), true);
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
            const bool found = reached.count("select3d " + std::to_string(i)) > 0;
            EXPECT_EQ(found, window.meets(boxes[i])) << "round " << round << " box " << i;
            const Vector3 corner = boxes[i].corner(static_cast<int>(random() % 8));
            const Vector3 eye = pick.modelView.transform(corner);
            const Vector3 seen = corner.project(pick.modelView, pick.projection, stage.viewport.data());
            const bool inFront = pick.projection == Matrix() || eye.z < -1e-3f;
            const bool inWindow = seen.x > static_cast<float>(window.x()) &&
                                  seen.x < static_cast<float>(window.x() + window.width()) &&
                                  seen.y > static_cast<float>(window.y()) &&
                                  seen.y < static_cast<float>(window.y() + window.height());
            EXPECT_TRUE(found || !inFront || !inWindow) << "round " << round << " box " << i;
        }
    }
}
