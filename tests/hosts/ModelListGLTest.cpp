// Models in a scene: their lists, what turns and hides them, and what their parts share.

#include "hosts/mesh/ModelList.h"

#include "hosts/host/HostScene.h"
#include "hosts/host/InputFeed.h"
#include "hosts/mesh/ModelParts.h"
#include "tests/hosts/Models.h"
#include "tests/scene/SceneFixture.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <functional>

using namespace hostkit;
using namespace kelvartest;
using Kelvar::Math::BoundingBox;
using Kelvar::Math::Matrix;
using Kelvar::Math::Vector3;
using testing::ElementsAre;

namespace {

Model named(const char* name)
{
    Model model;
    model.name = QLatin1String(name);
    return model;
}

/// A view of 400 x 300 pixels from the front in which one unit is 25 pixels, the origin in its middle.
struct ModelListGLTest : testing::Test
{
    GlContext gl{QSize(400, 300)};
    std::unique_ptr<HostScene> host{new HostScene(QString(), QString(), QString())};
    OruVisList& list = host->scene().render.visualizations;
    ModelParts models{list};

    ModelListGLTest()
    {
        host->setSize(gl.size());
        const Matrix view = Matrix::rotate(Kelvar::Math::VectorX, -90.0f) * Matrix::scale(1.0f / 6.0f);
        host->scene().setViewpoint("viewpoint", view);
    }

    void TearDown() override
    {
        EXPECT_EQ(gl.faults(), "");
        host.reset();
        EXPECT_EQ(GlRecorder::instance().liveObjects(), 0);
    }

    void set(const char* path, const char* value)
    {
        QString error;
        EXPECT_TRUE(host->setValue(QStringLiteral("render/visualization/") + path, value, &error))
            << error.toStdString();
    }

    /// The color at a place in the XZ plane.
    QColor colorAt(int x, int z)
    {
        host->draw();
        return gl.grab().pixelColor(200 + 25 * x, 150 - 25 * z);
    }

    std::string nameAt(int x, int z)
    {
        InputFeed input(*host);
        input.move(0, QPoint(200 + 25 * x, 150 + 25 * z));
        return host->context().tooltip.split('\n').first().toStdString();
    }

    BoundingBox bounds(const char* name) { return list[name]->bounds(); }
};

} // namespace

TEST_F(ModelListGLTest, HoldNodesAsListsWithNamesOfTheirOwn)
{
    Model model = named("car");
    const auto cube = built(cubeSource());
    model.parts.emplace_back(cube, Matrix(), "hood");
    model.children.resize(3);
    for (ModelNode& node : model.children) {
        const float x = static_cast<float>(&node - &model.children[0]) * 3.0f + 3.0f;
        node.name = QStringLiteral("wheels");
        node.parts.emplace_back(cube, Matrix::translate(Vector3(x, 0, 0)));
        node.parts.emplace_back(cube, Matrix::translate(Vector3(x, 0, 3)));
    }
    model.children[2].name.clear();
    models.add(model);
    models.add(model);
    for (const char* path : {"car/hood", "car/wheels/cube", "car/wheels/cube.2", "car/wheels.2/cube.2",
                             "car/cube", "car/cube.2", "car.2/hood"}) {
        EXPECT_TRUE(dynamic_cast<MeshVisualization*>(list.find(path))) << path;
    }
    set("car.2/visible", "false");
    EXPECT_EQ(nameAt(3, 3), "cube.2");
    set("car/wheels/visible", "false");
    EXPECT_EQ(nameAt(3, 3), "") << "hidden with its node";
    EXPECT_EQ(nameAt(6, 3), "cube.2");
    EXPECT_EQ(colorAt(3, 0), QColor(Qt::black));
    EXPECT_EQ(bounds("car").min(), Vector3(-1, -1, -1));
}

TEST_F(ModelListGLTest, UploadAMeshOnceForAllOfItsParts)
{
    Model model = named("many");
    // Larger than what is written into a buffer for each use.
    MeshSource source = sourceOf(bumpySphere(600, 1.0f));
    source.material.color = Qt::red;
    const auto mesh = built(source);
    for (int i = -3; i <= 3; ++i) {
        model.parts.emplace_back(mesh, Matrix::translate(Vector3(2.5f * static_cast<float>(i), 0, 0)));
    }
    models.add(model);
    models.add(model);
    GlRecorder::instance().start();
    host->draw();
    const auto calls = GlRecorder::instance().stop();
    EXPECT_EQ(std::count_if(calls.begin(), calls.end(),
                            [](const std::string& call) { return call.rfind("glGenBuffers", 0) == 0; }),
              1);
    list.erase(list["many"]);
    EXPECT_GT(colorAt(0, 0).red(), 100) << "the others keep it";
}

TEST_F(ModelListGLTest, ShowMirroredPartsLitFromOutside)
{
    MeshSource slope = cubeSource();
    slope.colors.assign(slope.positions.size(), 0xffffffff);
    Model model = named("pair");
    const auto cube = built(slope);
    const Matrix turned = Matrix::rotate(Kelvar::Math::VectorZ, 30.0f);
    model.parts.emplace_back(cube, turned * Matrix::translate(Vector3(-3, 0, 0)), "plain");
    model.parts.emplace_back(
        cube, turned * Matrix::scale(Vector3(-1, 1, 1)) * Matrix::translate(Vector3(3, 0, 0)), "mirrored");
    models.add(model);
    host->scene().find("render/visualization/lights/light.1")->setValue("x", "0");
    const QColor plain = colorAt(-3, 0);
    EXPECT_GT(plain.red(), 100);
    EXPECT_EQ(colorAt(3, 0), plain) << "the mirror image, also of the light";
    EXPECT_EQ(nameAt(3, 0), "mirrored");
    set("pair/mirrored/offset", "-1 0 0 0 0 1 0 0 0 0 1 0 6 0 0 1");
    EXPECT_EQ(colorAt(3, 0).red() > 100, true) << "mirrored twice";
}

TEST_F(ModelListGLTest, TurnAtOnceToAnyAxisUpwards)
{
    Model model = named("arrow");
    model.up = UpAxis::Y;
    // Of the file's x, y and z it reaches to 1, 2 and 3; read with Y upwards.
    model.parts.emplace_back(built(cubeSource()), Matrix::scale(Vector3(0.5f, 1.5f, 1)) *
                                                      Matrix::translate(Vector3(0.5f, -1.5f, 1)));
    models.add(model);
    const struct
    {
        const char* up;
        float height;
        float low;
    } rows[] = {{"x", 1, 0}, {"-x", 1, -1}, {"y", 2, 0}, {"-y", 2, -2}, {"z", 3, 0}, {"-z", 3, -3}};
    for (const auto& row : rows) {
        set("arrow/up", row.up);
        EXPECT_FLOAT_EQ(bounds("arrow").depth(), row.height) << row.up;
        EXPECT_FLOAT_EQ(bounds("arrow").min().z, row.low) << row.up;
        host->showFrom("y");
        EXPECT_GT(colorAt(0, 0).red(), 60) << row.up;
        EXPECT_EQ(nameAt(0, 0), "cube") << row.up;
    }
    QString error;
    EXPECT_FALSE(host->setValue("render/visualization/arrow/up", "w", &error));
}

TEST_F(ModelListGLTest, KeepFarModelsInPlaceToEachOther)
{
    Model first = named("first");
    first.up = UpAxis::Y;
    first.origin = {1e7 + 0.25, 2e7, 0};
    first.properties = {{"author", "someone"}, {"up", "side"}};
    first.parts.emplace_back(built(cubeSource()));
    Model second = first;
    second.name = QStringLiteral("second");
    second.origin = {1e7 + 5.5, 2e7, 1};
    models.add(first);
    ModelParts(list).add(second);
    EXPECT_EQ(bounds("first").center(), Vector3());
    EXPECT_EQ(bounds("second").center(), Vector3(5.25f, 0, 1));
    const auto text = [&](const char* key) {
        QString value;
        list["second"]->getValue(key, value, QString());
        return value.toStdString();
    };
    EXPECT_EQ(text("origin"), "10000000.25 2e+07 0");
    EXPECT_EQ(text("author"), "someone");
    EXPECT_EQ(text("up"), "y");
    set("second/up", "z");
    host->draw();
    EXPECT_EQ(text("origin"), "10000000.25 0 -2e+07") << "the origin in the turned frame";
}

TEST_F(ModelListGLTest, TellWhatAPartIsDroppedOnInWhicheverList)
{
    std::vector<QString> dropped;
    models.setDropListener([&](const QString& source, const QString& target) { dropped = {source, target}; });
    for (const char* name : {"left", "right"}) {
        Model model = named(name);
        model.parts.emplace_back(built(cubeSource()),
                                 Matrix::translate(Vector3(name[0] == 'l' ? -3.0f : 3.0f, 0, 0)), name);
        models.add(model);
    }
    set("left/left/movable", "true");
    host->draw();
    InputFeed input(*host);
    input.press(OruMouse::ButtonPick, 0, QPoint(125, 150));
    input.move(0, QPoint(275, 150));
    input.release(OruMouse::ButtonPick, 0, QPoint(275, 150));
    EXPECT_THAT(dropped, ElementsAre("left", "right"));
}
