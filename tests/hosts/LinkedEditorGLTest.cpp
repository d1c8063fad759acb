// Windows whose scenes are kept in step.

#include "hosts/host/EditRecorder.h"
#include "hosts/host/LinkedEditor.h"
#include "hosts/mesh/ModelParts.h"
#include "tests/hosts/Models.h"

#include <boost/make_shared.hpp>

#include <gmock/gmock.h>

using namespace hostkit;

namespace {

struct LinkedEditorGLTest : testing::Test
{
    LinkedEditorGLTest()
    {
        Model model;
        model.parts.emplace_back(kelvartest::built(kelvartest::cubeSource()));
        for (SceneWindow* const window : {&front, &side}) {
            window->setContent(
                [model](HostScene& host) { ModelParts(host.scene().render.visualizations).add(model); });
        }
        recorder->setListener([this](EditRecorder::Subject, const EditStep& step) { steps.push_back(step); });
        front.host().scene().render.setCustomEditor(recorder);
        linked->add(front);
        linked->add(side);
    }

    static void edit(SceneWindow& window, const char* key, const char* value)
    {
        window.run([&](HostScene& host) {
            host.edit(*host.scene().find("render/visualization/cube"), key, value);
            return true;
        });
    }

    /// A press whose release never comes.
    static void press(SceneWindow& window)
    {
        window.run([&](HostScene&) { return window.input().press(OruMouse::ButtonView, 0, QPoint(9, 9)); });
    }

    /// What the scene of each window has.
    std::vector<QString> values(const char* key)
    {
        std::vector<QString> both(2);
        front.host().scene().find("render/visualization/cube")->getValue(key, both[0], QString());
        side.host().scene().find("render/visualization/cube")->getValue(key, both[1], QString());
        return both;
    }

    SceneWindow front;
    SceneWindow side;
    boost::shared_ptr<EditRecorder> recorder = boost::make_shared<EditRecorder>();
    std::vector<EditStep> steps;
    std::unique_ptr<LinkedEditor> linked = std::make_unique<LinkedEditor>();
};

TEST_F(LinkedEditorGLTest, EditsOfBothAreMadeInBothKeptInOnePlaceAndTakenBackInBoth)
{
    const auto both = [](const char* value) { return testing::Each(QString(value)); };
    edit(front, "marked", "true");
    EXPECT_THAT(values("marked"), both("true"));
    edit(side, "visible", "false");
    EXPECT_THAT(values("visible"), both("false"));
    ASSERT_EQ(steps.size(), 2u);
    front.host().undo(steps[1]);
    EXPECT_THAT(values("visible"), both("true"));
    front.host().undo(steps[0]);
    EXPECT_THAT(values("marked"), both("false"));
    front.host().redo(steps[0]);
    EXPECT_THAT(values("marked"), both("true"));
    EXPECT_EQ(steps.size(), 2u) << "taking a step back is none";

    front.host().scene().render.editor()->beginEdit();
    edit(side, "marked", "false");
    edit(front, "visible", "false");
    EXPECT_EQ(steps.size(), 2u) << "one within a session of the other";
    front.host().scene().render.editor()->endEdit();
    ASSERT_EQ(steps.size(), 3u);
    EXPECT_EQ(steps[2].changes().size(), 2u);
}

TEST_F(LinkedEditorGLTest, AWindowThatGoesOrComesInTheMiddleOfAGestureLeavesNoSessionOpen)
{
    auto third = std::make_unique<SceneWindow>();
    linked->add(*third);
    press(*third);
    third.reset();
    edit(front, "marked", "true");
    EXPECT_EQ(steps.size(), 1u);

    std::vector<InputEvent::Kind> heard;
    side.setInputListener([&](const InputEvent& event) { heard.push_back(event.kind); });
    press(side);
    side.renew();
    EXPECT_THAT(heard, testing::ElementsAre(InputEvent::Kind::Press, InputEvent::Kind::Cancel));
    edit(side, "marked", "false");
    EXPECT_EQ(steps.size(), 2u);

    press(side);
    side.setSurfaceType(QSurface::RasterSurface); // which takes no context
    EXPECT_THROW(side.renew(), std::runtime_error);
    edit(front, "visible", "false");
    EXPECT_EQ(steps.size(), 3u);
}

TEST_F(LinkedEditorGLTest, EachHasItsViewAndComesBackWithItsContext)
{
    const Kelvar::Math::Matrix before = front.host().view();
    side.run([](HostScene& host) { return host.setView(Kelvar::Math::Matrix::scale(0.5f)); });
    EXPECT_EQ(front.host().view(), before);
    EXPECT_EQ(side.host().view(), Kelvar::Math::Matrix::scale(0.5f));

    edit(front, "marked", "true");
    side.renew();
    edit(side, "visible", "false");
    EXPECT_THAT(values("marked"), testing::Each(QStringLiteral("true")));
    EXPECT_THAT(values("visible"), testing::Each(QStringLiteral("false")));

    linked.reset();
    EXPECT_EQ(front.host().scene().render.editor(), recorder);
    edit(side, "marked", "false");
    EXPECT_THAT(values("marked"), testing::ElementsAre("true", "false"));
}

} // namespace
