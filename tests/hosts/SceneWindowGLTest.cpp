// A window whose scene is made anew, or cannot be; and what Qt tells it.

#include "hosts/host/SceneWindow.h"
#include "hosts/mesh/ModelParts.h"
#include "tests/hosts/Models.h"

#include <QCoreApplication>
#include <QWheelEvent>

#include <gmock/gmock.h>

using namespace hostkit;

namespace {

struct SceneWindowGLTest : testing::Test
{
    SceneWindowGLTest()
    {
        QObject::connect(&window, &SceneWindow::sceneRenewed, [this] { ++renewals; });
        window.setContent([this](HostScene& host) {
            if (contentThrows) {
                throw std::runtime_error("as the test wants it");
            }
            Model model;
            model.parts.emplace_back(kelvartest::built(kelvartest::cubeSource()));
            ModelParts(host.scene().render.visualizations).add(model);
        });
        QString error;
        window.run([&](HostScene& host) { return host.setValue(cube + "/marked", "true", &error); });
        EXPECT_EQ(error, "");
        window.show();
    }

    /// Of the cube; empty: there is none.
    QString marked()
    {
        QString value;
        OruProperties* const node = window.host().scene().find(cube);
        return node ? node->getValue("marked", value, QString()) : QString();
    }

    const QString cube = "render/visualization/cube";
    SceneWindow window;
    int renewals = 0;
    bool contentThrows = false;
};

TEST_F(SceneWindowGLTest, GoesOnWithWhatThereIsAndLosesNothing)
{
    contentThrows = true;
    window.renew();
    EXPECT_EQ(renewals, 1);
    EXPECT_TRUE(window.hasScene() && window.isVisible());
    EXPECT_EQ(marked(), "");

    contentThrows = false;
    window.setSurfaceType(QSurface::RasterSurface); // which takes no context
    EXPECT_THROW(window.renew(), std::runtime_error);
    EXPECT_EQ(renewals, 2) << "who holds the former scene hears that it went";
    EXPECT_TRUE(!window.hasScene() && window.isVisible());
    EXPECT_FALSE(window.runAndTell([](HostScene&) { return true; }));
    window.setInputListener({});

    window.setSurfaceType(QSurface::OpenGLSurface);
    window.renew();
    EXPECT_EQ(marked(), "true");
    EXPECT_FALSE(window.runAndTell([](HostScene&) -> bool { throw 1; })) << "whatever it is";
    EXPECT_TRUE(window.runAndTell([](HostScene&) { return false; }));
}

TEST_F(SceneWindowGLTest, CountsStepsOfTheWheelByItsAngle)
{
    std::vector<double> steps;
    window.setInputListener([&](const InputEvent& event) { steps.push_back(event.amount); });
    QWheelEvent event(QPointF(9, 9), QPointF(9, 9), QPoint(0, 3), QPoint(0, 60), Qt::NoButton, Qt::NoModifier,
                      Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(&window, &event);
    EXPECT_THAT(steps, testing::Contains(0.5));
}

} // namespace
