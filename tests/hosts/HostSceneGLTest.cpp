#include "hosts/kit/HostScene.h"

#include "contracts/core/OruText.h"
#include "contracts/ogl/OruOglFunctions.h"
#include "contracts/vis/IOruVisPropertyEdit.h"
#include "hosts/kit/InputFeed.h"
#include "hosts/kit/ModelImporter.h"
#include "tests/hosts/Models.h"
#include "tests/support/GlContext.h"
#include "tests/support/GlRecorder.h"

#include <QTemporaryDir>

#include <boost/make_shared.hpp>

#include <gmock/gmock.h>

#include <memory>

using hostkit::HostScene;
using hostkit::InputFeed;
using hostkit::MeshVisualization;
using hostkit::Model;
using Kelvar::Math::Matrix;
using Kelvar::Math::Vector3;
using kelvartest::built;
using kelvartest::cubeSource;
using testing::ElementsAre;

namespace {

/// Stores what it is told and keeps count of what passed.
struct CountingEditor : IOruVisPropertyEdit
{
    void beginEdit() override { ++open; }
    void endEdit() override { --open; }
    void editValue(OruVisList* owner, OruProperties* properties, const QString& name,
                   const QString& value) override
    {
        EXPECT_NE(owner, nullptr);
        EXPECT_EQ(open, 1) << "outside an edit session";
        edits.push_back((properties->name() + '/' + name).toStdString());
        properties->setValue(name, value);
    }
    int open = 0;
    std::vector<std::string> edits;
};

Model cubes(std::initializer_list<Vector3> centres)
{
    Model model;
    for (const Vector3& centre : centres) {
        model.parts.push_back(built(cubeSource(centre)));
    }
    return model;
}

/// A view of 400 x 300 pixels in which one world unit is 50 pixels, from the front, with an editor installed.
struct HostSceneGLTest : testing::Test
{
    static constexpr int width = 400;
    static constexpr int height = 300;
    kelvartest::GlContext gl{QSize(width, height)};
    std::unique_ptr<HostScene> host{new HostScene(QString(), QString(), QString())};
    boost::shared_ptr<CountingEditor> editor = boost::make_shared<CountingEditor>();
    InputFeed input{*host};

    HostSceneGLTest()
    {
        host->setSize(gl.size());
        host->scene().render.setCustomEditor(editor);
        const Matrix view = Matrix::rotate(Kelvar::Math::VectorX, -90.0f) * Matrix::scale(1.0f / 3.0f);
        host->scene().setViewpoint("viewpoint", view);
        editor->edits.clear();
    }

    void TearDown() override
    {
        EXPECT_EQ(editor->open, 0);
        EXPECT_EQ(gl.faults(), "");
        host.reset();
        EXPECT_EQ(GlRecorder::instance().liveObjects(), 0);
    }

    MeshVisualization& part(const char* name)
    {
        return dynamic_cast<MeshVisualization&>(*host->scene().render.visualizations[name]);
    }

    QImage drawn()
    {
        host->draw();
        return gl.grab();
    }

    /// The window pixel, y up, at which the scene shows a place.
    QPoint pixelOf(const Vector3& place)
    {
        const OruSceneEventContext& ctx = host->context();
        const Vector3 window = place.project(ctx.modelView, ctx.projection, ctx.viewport.data());
        return QPoint(static_cast<int>(window.x), static_cast<int>(window.y));
    }

    QColor colourAt(const QImage& image, const Vector3& place)
    {
        const QPoint pixel = pixelOf(place);
        return image.pixelColor(pixel.x(), height - 1 - pixel.y());
    }

    using GlRecorder = kelvartest::GlRecorder;
};

const Vector3 left(-2, 0, 0);
const Vector3 right(2, 0, 0);

} // namespace

TEST_F(HostSceneGLTest, DrawsPartsLitInTheirColoursAndNamesThemApart)
{
    host->addModel(cubes({left, right}));
    ASSERT_NE(host->scene().render.visualizations["cube.2"], nullptr);
    EXPECT_TRUE(host->setValue("render/visualization/cube.2/color", "#ff2020ff", nullptr));
    const QImage image = drawn();
    EXPECT_GT(colourAt(image, left).red(), 100);
    EXPECT_LT(colourAt(image, left).blue(), 60);
    EXPECT_GT(colourAt(image, right).blue(), 100);
    EXPECT_LT(colourAt(image, right).red(), 60);
    EXPECT_EQ(colourAt(image, Vector3()), QColor(Qt::black)) << "between them";
    EXPECT_NE(image.pixelColor(0, height / 2), QColor(Qt::black)) << "the frame";

    EXPECT_TRUE(host->setValue("render/visualization/cube/visible", "false", nullptr));
    EXPECT_EQ(colourAt(drawn(), left), QColor(Qt::black));
}

TEST_F(HostSceneGLTest, ShowsOpenMeshesFromBothSidesAndClosedOnesFromOutside)
{
    // The front half of a cube is missing, so one looks at its back from inside.
    hostkit::MeshSource open = cubeSource();
    open.indices.erase(open.indices.begin() + 12, open.indices.begin() + 18);
    Model model;
    model.parts.push_back(built(open));
    host->addModel(model);
    EXPECT_FALSE(part("cube").mesh().closed);
    EXPECT_GT(colourAt(drawn(), Vector3()).red(), 60);

    const auto unculled = testing::Contains("glDisable(GL_CULL_FACE)");
    GlRecorder::instance().start();
    host->draw();
    EXPECT_THAT(GlRecorder::instance().stop(), unculled.Times(2)) << "the open cube and the 2D pass";
    host->addModel(cubes({right}));
    host->setValue("render/visualization/cube/visible", "false", nullptr);
    GlRecorder::instance().start();
    host->draw();
    EXPECT_THAT(GlRecorder::instance().stop(), unculled.Times(1)) << "the 2D pass alone";
}

TEST_F(HostSceneGLTest, KeepsTheProjectionInStepAndNeverWritesAStaleViewBack)
{
    host->addModel(cubes({left}));
    const Matrix stored = host->scene().viewpoint("viewpoint");
    host->context().modelView = Matrix();
    input.move(0, QPoint(5, 5));
    EXPECT_EQ(host->scene().viewpoint("viewpoint"), stored) << "an event before the first draw";
    EXPECT_EQ(host->context().modelView, stored);
    EXPECT_THAT(editor->edits, ElementsAre());

    const auto expected = [&] {
        const OruSceneEventContext& ctx = host->context();
        return glGetOrtho(ctx.viewport, ctx.bounds, ctx.modelView);
    };
    EXPECT_EQ(host->context().projection, expected());
    host->setSize(QSize(200, 300));
    input.wheel(-InputFeed::wheelStep, 0, QPoint(10, 10));
    EXPECT_EQ(host->context().viewport.width, 200);
    host->draw();
    EXPECT_EQ(host->context().projection, expected());
}

TEST_F(HostSceneGLTest, TellsTheNameUnderThePointer)
{
    host->addModel(cubes({left, right}));
    host->draw();
    EXPECT_TRUE(input.move(0, pixelOf(right)));
    EXPECT_EQ(host->context().tooltip, "cube.2\ntriangles: 12");
    EXPECT_TRUE(input.move(0, pixelOf(Vector3()))) << "the tooltip goes";
    EXPECT_EQ(host->context().tooltip, "");
    EXPECT_FALSE(input.move(0, pixelOf(Vector3()) + QPoint(1, 1)));
}

TEST_F(HostSceneGLTest, MarksAPartThatIsClickedThroughTheEditor)
{
    host->addModel(cubes({left, right}));
    const QColor plain = colourAt(drawn(), left);
    input.press(OruMouse::ButtonPick, 0, pixelOf(left));
    EXPECT_TRUE(input.release(OruMouse::ButtonPick, 0, pixelOf(left) + QPoint(2, -2)));
    EXPECT_TRUE(part("cube").marked.value());
    EXPECT_FALSE(part("cube.2").marked.value());
    EXPECT_THAT(editor->edits, ElementsAre("cube/marked"));
    EXPECT_GT(colourAt(drawn(), left).green(), plain.green() + 40);

    input.press(OruMouse::ButtonPick, 0, pixelOf(left));
    input.release(OruMouse::ButtonPick, 0, pixelOf(left));
    EXPECT_FALSE(part("cube").marked.value());
}

TEST_F(HostSceneGLTest, MovesAMovablePartInTheViewPlaneAsOneEdit)
{
    host->addModel(cubes({left, right}));
    std::vector<QString> dropped;
    host->draw();
    part("cube").setDropListener([&](const QString& source, const QString& target) {
        dropped = {source, target};
    });
    part("cube").movable.setValue(true);
    const Matrix view = host->scene().viewpoint("viewpoint");

    input.press(OruMouse::ButtonPick, 0, pixelOf(left));
    EXPECT_TRUE(input.move(0, pixelOf(left) + QPoint(30, 10)));
    EXPECT_TRUE(input.move(0, pixelOf(left) + QPoint(30, 50)));
    EXPECT_GT(colourAt(drawn(), left + Vector3(0.6f, 0, 1)).red(), 60) << "it follows before the release";
    EXPECT_THAT(editor->edits, ElementsAre());
    EXPECT_TRUE(input.release(OruMouse::ButtonPick, 0, pixelOf(left) + QPoint(30, 50)));

    EXPECT_THAT(editor->edits, ElementsAre("cube/offset"));
    const Vector3 moved = part("cube").offset.value().transform(Vector3());
    EXPECT_NEAR(moved.x, 0.6f, 1e-4f);
    EXPECT_NEAR(moved.y, 0.0f, 1e-4f) << "away from the eye";
    EXPECT_NEAR(moved.z, 1.0f, 1e-4f);
    EXPECT_EQ(host->scene().viewpoint("viewpoint"), view);
    EXPECT_THAT(dropped, ElementsAre()) << "let go over nothing else";

    // The part under the pointer stands behind the one that was dragged there.
    part("cube").offset.setValue(Matrix::translate(Vector3(0, 3, 0)));
    input.press(OruMouse::ButtonPick, 0, pixelOf(left));
    input.move(0, pixelOf(right));
    input.release(OruMouse::ButtonPick, 0, pixelOf(right));
    EXPECT_THAT(dropped, ElementsAre("cube", "cube.2"));
}

TEST_F(HostSceneGLTest, TurnsTheViewWithADragOnAPartThatIsNotMovable)
{
    host->addModel(cubes({left}));
    host->draw();
    input.press(OruMouse::ButtonPick, 0, pixelOf(left));
    EXPECT_TRUE(input.move(0, pixelOf(left) + QPoint(80, 0)));
    input.release(OruMouse::ButtonPick, 0, pixelOf(left) + QPoint(80, 0));
    EXPECT_THAT(editor->edits, ElementsAre("viewpoint/matrix"));
    EXPECT_EQ(part("cube").offset.value(), Matrix());
}

TEST_F(HostSceneGLTest, ShowsAModelWholeFromAboveFrontRight)
{
    hostkit::Progress progress;
    host->addModel(hostkit::ModelImporter::load(kelvartest::engineFile(), progress));
    ASSERT_TRUE(host->showFrom("iso"));
    const QImage image = drawn();
    const Kelvar::Math::BoundingBox box = host->context().bounds;
    for (int i = 0; i < 8; ++i) {
        const QPoint pixel = pixelOf(box.corner(i));
        EXPECT_TRUE(QRect(0, 0, width, height).contains(pixel)) << "corner " << i;
    }
    const auto depth = [&](const Vector3& place) {
        const OruSceneEventContext& ctx = host->context();
        return place.project(ctx.modelView, ctx.projection, ctx.viewport.data()).z;
    };
    const Vector3 c = box.center();
    EXPECT_LT(depth(c + Vector3(9, 0, 0)), depth(c)) << "the right side is near";
    EXPECT_LT(depth(c + Vector3(0, -9, 0)), depth(c)) << "the front is near";
    EXPECT_LT(depth(c + Vector3(0, 0, 9)), depth(c)) << "the top is near";
    EXPECT_GT(pixelOf(c + Vector3(0, 0, 90)).y(), pixelOf(c).y()) << "the top is up";
    EXPECT_GT(colourAt(image, c).red(), 40) << "and there is something to see";
    EXPECT_FALSE(host->showFrom("top"));
}

TEST_F(HostSceneGLTest, TakesAPictureOfAnySizeThatEqualsTheWindow)
{
    host->addModel(cubes({left, right}));
    const QImage window = drawn();
    EXPECT_EQ(host->picture(gl.size()), window);
    EXPECT_EQ(host->picture(QSize(33, 1001)).size(), QSize(33, 1001));
    EXPECT_EQ(drawn(), window) << "the window is as before";
}

TEST_F(HostSceneGLTest, SavesAndLoadsTheWholeState)
{
    QTemporaryDir folder;
    const QString file = folder.filePath("state.json");
    QString error;
    host->addModel(cubes({left, right}));
    part("cube").marked.setValue(true);
    part("cube.2").offset.setValue(Matrix::translate(Vector3(0.3f, 0, -0.7f)));
    host->showFrom("iso");
    const QImage before = drawn();
    ASSERT_TRUE(host->save(file, &error)) << error.toStdString();

    HostScene other{QString(), QString(), QString()};
    other.setSize(gl.size());
    other.addModel(cubes({left, right}));
    ASSERT_TRUE(other.load(file, &error)) << error.toStdString();
    EXPECT_EQ(other.picture(gl.size()), before);

    EXPECT_FALSE(other.load(folder.filePath("missing.json"), &error));
    EXPECT_FALSE(error.isEmpty());
}

TEST_F(HostSceneGLTest, SetsPropertiesByPathAndSaysWhatIsMissing)
{
    QString error;
    EXPECT_TRUE(host->setValue("render/textInfo", "true", &error));
    EXPECT_EQ(host->scene().render.string().defined("textInfo"), true);
    EXPECT_FALSE(host->setValue("nowhere/textInfo", "true", &error));
    EXPECT_THAT(error.toStdString(), testing::HasSubstr("no node \"nowhere\""));
    EXPECT_FALSE(host->setValue("render/textinfo", "true", &error));
    EXPECT_THAT(error.toStdString(), testing::HasSubstr("no property \"textinfo\""));
}

TEST_F(HostSceneGLTest, SumsSmallTurnsOfTheWheel)
{
    host->addModel(cubes({left}));
    host->draw();
    const QPoint at(10, 10);
    const auto scale = [&] {
        return host->context().modelView.transformDirection(Vector3(1, 0, 0)).length();
    };
    const float start = scale();
    EXPECT_FALSE(input.wheel(-50, 0, at));
    EXPECT_FALSE(input.wheel(-50, 0, at));
    EXPECT_EQ(scale(), start);
    EXPECT_TRUE(input.wheel(-50, 0, at));
    EXPECT_NEAR(scale(), start * 1.1f, 1e-5f);
    EXPECT_TRUE(input.wheel(-90 - 2 * InputFeed::wheelStep, 0, at)) << "30 were left over: three steps";
    EXPECT_NEAR(scale(), start * 1.1f * 1.1f * 1.1f * 1.1f, 1e-5f);
    EXPECT_TRUE(input.wheel(InputFeed::wheelStep, 0, at));
    EXPECT_NEAR(scale(), start * 1.1f * 1.1f * 1.1f, 1e-5f);
}

TEST_F(HostSceneGLTest, EndsAGestureThatTheWindowSystemTookAway)
{
    host->addModel(cubes({left}));
    host->draw();
    const Matrix view = host->context().modelView;
    input.press(OruMouse::ButtonContext, 0, QPoint(20, 200));
    input.press(OruMouse::ButtonView, 1, QPoint(20, 200));
    input.release(OruMouse::ButtonView, 0, QPoint(20, 200));
    EXPECT_TRUE(input.move(0, QPoint(220, 20))) << "the band grows";
    EXPECT_EQ(editor->open, 1);
    EXPECT_TRUE(input.cancel()) << "the band goes from the screen";
    EXPECT_EQ(editor->open, 0);
    EXPECT_EQ(host->context().modelView, view) << "no box zoom ran";
    EXPECT_FALSE(input.held(OruMouse::ButtonContext));
    EXPECT_FALSE(input.release(OruMouse::ButtonContext, 0, QPoint(220, 20))) << "the late release is no news";
    EXPECT_FALSE(input.cancel());
}

TEST_F(HostSceneGLTest, LooksFromAStandardPositionAtAKey)
{
    host->addModel(cubes({left}));
    host->draw();
    EXPECT_TRUE(input.keyPress('X', 2));
    EXPECT_LT(host->context().modelView.transformDirection(Vector3(1, 0, 0)).z, 0.0f)
        << "from -x, with Shift";
    EXPECT_FALSE(input.keyRelease('X', 2));
    EXPECT_FALSE(input.keyPress('Q', 0));
}
