// Models that are cut open: what is seen is what is picked, and cut faces are closed.

#include "Scene/core/OruSceneRenderContext.h"
#include "Scene/core/OruSceneSelectContext.h"
#include "contracts/core/OruPropertiesFile.h"
#include "contracts/ogl/OruOglGl.h"
#include "contracts/vis/OruVisHitRecordQuery.h"
#include "hosts/host/EditRecorder.h"
#include "hosts/host/HostScene.h"
#include "hosts/host/InputFeed.h"
#include "hosts/host/LightRig.h"
#include "hosts/mesh/MeshVisualization.h"
#include "hosts/mesh/ModelParts.h"
#include "hosts/mesh/SectionPlanes.h"
#include "tests/hosts/Models.h"
#include "tests/support/GlContext.h"

#include <boost/make_shared.hpp>

#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <random>

using namespace hostkit;
using namespace kelvartest;
using Kelvar::Math::Matrix;
using Kelvar::Math::Vector3;

namespace {

const QSize size(200, 160);

/// Parts in pure colors, all closed: a blue cube between a red and a green ball, and planes that can cut.
struct Section : testing::Test
{
    Section()
    {
        host.setSize(size);
        OruVisList& all = host.scene().render.visualizations;
        planes = new SectionPlanes(all.group);
        all.insert(planes, false);
        Model model;
        model.name = "model";
        addBall(model, "ball", Vector3(0, 2.5f, 0), 1.0f, Qt::red);
        addBall(model, "green", Vector3(0, -2.5f, 0), 0.9f, Qt::green);
        MeshSource cube = cubeSource();
        cube.name = "cube";
        cube.material.color = Qt::blue;
        model.parts.emplace_back(built(std::move(cube)));
        ModelParts(all).add(model);
        LightRig::apply(host.scene());
        host.changed();
        host.showFrom("iso");
    }

    static void addBall(Model& model, const char* name, const Vector3& at, float radius, const QColor& color)
    {
        MeshSource ball = sourceOf(bumpySphere(4000, radius));
        for (Vector3& position : ball.positions) {
            position += at;
        }
        ball.name = QLatin1String(name);
        ball.colors.clear();
        ball.material.color = color;
        model.parts.emplace_back(built(std::move(ball)));
    }

    void cut(int axis, double position, bool flipped = false, bool framed = true)
    {
        planes->plane(axis).active.setValue(true);
        planes->plane(axis).position.setValue(position);
        planes->plane(axis).flipped.setValue(flipped);
        planes->plane(axis).framed.setValue(framed);
    }

    QImage drawn()
    {
        host.changed();
        host.draw();
        return gl.grab();
    }

    struct Hit
    {
        std::string name;
        double depth = 1.0;
    };

    /// At a pixel, counted from the lower left.
    Hit pickAt(int x, int y)
    {
        OruSceneSelectContext sc(host.context());
        sc.pickPoint = QPoint(x, y);
        sc.pickSize = QSize(1, 1);
        OruScene::setViewing(sc);
        const OruVisualization* object = nullptr;
        const OruVisHitRecord hit =
            OruVisHitRecordQuery::top(host.scene().render.select(sc), nullptr, &object);
        return object ? Hit{object->name().toStdString(), hit.distance} : Hit();
    }

    GlContext gl{size};
    HostScene host{QString(), QString(), QString()};
    SectionPlanes* planes = nullptr;
};

/// Which part has that color, however it is lit.
std::string partOf(QRgb pixel)
{
    const int red = qRed(pixel);
    const int green = qGreen(pixel);
    const int blue = qBlue(pixel);
    return red > green + blue ? "ball" : green > red + blue ? "green" : blue > red + green ? "cube" : "";
}

} // namespace

TEST_F(Section, ShowsWhatItPicks)
{
    host.setValue("render/background", "#ff808080", nullptr);
    std::mt19937 random(11);
    std::uniform_real_distribution<double> place(-0.4, 0.4);
    std::uniform_real_distribution<float> angle(-180.0f, 180.0f);
    for (int round = 0; round < 40; ++round) {
        for (int axis = 0; axis < 3; ++axis) {
            planes->plane(axis).active.setValue(false);
        }
        for (int cuts = 0; cuts <= round % 3; ++cuts) {
            cut((round + cuts) % 3, place(random) + ((round + cuts) % 3 == 1 ? 2.2 * (round & 4) / 4 : 0.0),
                round & 8, false);
        }
        host.setView(Matrix::rotate(Vector3(0, 0, 1), angle(random)) *
                     Matrix::rotate(Vector3(1, 0.3f, 0).normalized(), angle(random)) * Matrix::scale(0.25f));
        const QImage frame = drawn();
        std::vector<float> depths(static_cast<std::size_t>(size.width()) *
                                  static_cast<std::size_t>(size.height()));
        glReadPixels(0, 0, size.width(), size.height(), GL_DEPTH_COMPONENT, GL_FLOAT, depths.data());
        int wrong = 0;
        for (int y = 3; y < size.height(); y += 7) {
            for (int x = 3; x < size.width(); x += 7) {
                const Hit hit = pickAt(x, y);
                const float depth =
                    depths[static_cast<std::size_t>(y) * static_cast<std::size_t>(size.width()) +
                           static_cast<std::size_t>(x)];
                const std::string seen = partOf(frame.pixel(x, size.height() - 1 - y));
                wrong += seen != hit.name;
                wrong += !hit.name.empty() && std::abs(hit.depth - static_cast<double>(depth)) > 2e-3;
            }
        }
        EXPECT_LE(wrong, 2) << "round " << round << ": outlines are up to rounding";
    }
}

TEST_F(Section, ClosesACutWithTheColorOfItsPart)
{
    cut(0, 0.1);
    host.showFrom("x");
    const QImage frame = drawn();
    const auto& ctx = host.context();
    const struct
    {
        Vector3 at;
        const char* part;
    } rows[] = {
        {Vector3(0.1f, 2.5f, 0), "ball"},
        {Vector3(0.1f, -2.5f, 0), "green"},
        {Vector3(0.1f, 0.4f, 0.4f), "cube"},
    };
    for (const auto& row : rows) {
        const Vector3 pixel = row.at.project(ctx.modelView, ctx.projection, ctx.viewport.data());
        const Hit hit = pickAt(static_cast<int>(pixel.x), static_cast<int>(pixel.y));
        EXPECT_EQ(hit.name, row.part);
        EXPECT_NEAR(hit.depth, static_cast<double>(pixel.z), 1e-4) << row.part << ": the face, not the back";
        EXPECT_EQ(
            partOf(frame.pixel(static_cast<int>(pixel.x), size.height() - 1 - static_cast<int>(pixel.y))),
            row.part);
    }
    cut(0, 0.1, true);
    const Vector3 gone = Vector3(0.05f, 0, 0).project(ctx.modelView, ctx.projection, ctx.viewport.data());
    EXPECT_GT(static_cast<double>(gone.z), pickAt(static_cast<int>(gone.x), static_cast<int>(gone.y)).depth)
        << "the other side stays";
}

/// A frame round a plane is drawn ahead of the parts, and what is tinted like the last one is not told anew.
TEST_F(Section, OfPartsInOneColorLooksTheSameInEveryFrame)
{
    for (const char* name : {"ball", "green", "cube"}) {
        host.setValue(QStringLiteral("render/visualization/model/%1/color").arg(QLatin1String(name)),
                      "#ff808080", nullptr);
    }
    cut(0, 0.0);
    const QImage first = drawn();
    EXPECT_EQ(drawn(), first);
    EXPECT_EQ(drawn(), first);
}

TEST(SolidMeshes, AreThoseThatEncloseAVolumeCracksAside)
{
    const auto without = [](std::vector<std::size_t> faces) {
        MeshSource cube = cubeSource();
        std::sort(faces.rbegin(), faces.rend());
        for (const std::size_t triangle : faces) {
            const auto at = cube.indices.begin() + static_cast<std::ptrdiff_t>(3 * triangle);
            cube.indices.erase(at, at + 3);
        }
        return cube;
    };
    const auto cracked = [] {
        MeshSource ball = sourceOf(bumpySphere(20000, 2.0f));
        for (std::size_t triangle = 0; triangle < 20; ++triangle) {
            ball.indices.erase(ball.indices.begin() + static_cast<std::ptrdiff_t>(900 * triangle),
                               ball.indices.begin() + static_cast<std::ptrdiff_t>(900 * triangle + 3));
        }
        return ball;
    };
    const struct
    {
        const char* what;
        MeshSource source;
        bool solid;
    } rows[] = {
        {"a cube", cubeSource(), true},
        {"a cube far away", cubeSource(Vector3(500, 0, -300)), true},
        {"without a triangle", without({0}), false},
        {"without a face", without({0, 1}), false},
        {"without two faces that face each other", without({0, 1, 2, 3}), false},
        {"a face alone", without({2, 3, 4, 5, 6, 7, 8, 9, 10, 11}), false},
        {"a ball with cracks", cracked(), true},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(built(row.source)->isSolid(), row.solid) << row.what;
    }
}

TEST_F(Section, IsInPicturesAsInTheWindow)
{
    host.setValue("render/background", "#ff808080", nullptr);
    const QImage whole = drawn();
    cut(0, 0.1);
    cut(2, 0.2);
    const QImage frame = drawn();
    EXPECT_NE(frame, whole);
    const QImage picture = host.picture(size);
    int different = 0;
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x) {
            different += partOf(picture.pixel(x, y)) != partOf(frame.pixel(x, y));
        }
    }
    EXPECT_LE(different, 4);
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

TEST_F(Section, OfNothingChangesNothing)
{
    const QImage with = drawn();
    const auto bounds = host.context().bounds;
    OruVisList& all = host.scene().render.visualizations;
    cut(1, 0.0);
    EXPECT_NE(drawn(), with);
    EXPECT_EQ(host.context().bounds, bounds) << "the view is fitted to the models";
    planes->visible.setValue(false);
    EXPECT_EQ(drawn(), with) << "a hidden list cuts nothing";
    all.erase(planes);
    EXPECT_EQ(drawn(), with);
}

TEST_F(Section, ShowsItsHandleAndFrameFromAllSides)
{
    constexpr int step = 3; // pixels, of a handle of 13
    const auto isGreen = [](QRgb pixel) { return QColor(pixel) == QColor(72, 160, 72); };
    cut(1, 0.0);
    const auto check = [&](const std::string& view) {
        const QImage frame = drawn();
        int taken = 0;
        int seen = 0;
        int green = 0;
        for (int y = 1; y < size.height() - 1; y += step) {
            for (int x = 1; x < size.width() - 1; x += step) {
                if (pickAt(x, y).name == "y") {
                    ++taken;
                    seen += isGreen(frame.pixel(x, size.height() - 1 - y)) ? 1 : 0;
                }
            }
        }
        for (int i = 0; i < size.width() * size.height(); ++i) {
            green += isGreen(frame.pixel(i % size.width(), i / size.width())) ? 1 : 0;
        }
        EXPECT_GE(taken, 6) << view;
        EXPECT_GE(10 * seen, 6 * taken) << "it can be taken a little beside, too; " << view;
        EXPECT_GE(green, 200) << "the frame, beside the handle's 169; " << view;
    };
    for (int turn = 45; turn < 360; turn += 90) {
        host.setView(Matrix::rotate(Vector3(1, 0, 0), 20.0f) *
                     Matrix::rotate(Vector3(0, 1, 0), static_cast<float>(turn)) * Matrix::scale(0.2f));
        check("turn " + std::to_string(turn));
    }
    for (const QString& position : HostScene::positions()) {
        host.showFrom(position);
        check(position.toStdString());
    }
}

TEST_F(Section, MovesByItsHandleAsOneEdit)
{
    cut(0, 0.2);
    host.showFrom("z");
    drawn();
    const auto recorder = boost::make_shared<EditRecorder>();
    std::vector<EditStep> steps;
    recorder->setListener([&](EditRecorder::Subject subject, const EditStep& step) {
        if (subject == EditRecorder::Subject::Values) {
            steps.push_back(step);
        }
    });
    host.scene().render.setCustomEditor(recorder);
    // The handle is where the pick finds the plane.
    QPoint handle(-1, -1);
    for (int y = 0; y < size.height() && handle.x() < 0; y += 3) {
        for (int x = 0; x < size.width(); x += 3) {
            if (pickAt(x, y).name == "x") {
                handle = QPoint(x, y);
            }
        }
    }
    ASSERT_GE(handle.x(), 0);
    drawn();
    InputFeed input(host);
    input.press(OruMouse::ButtonPick, 0, handle);
    for (int step = 1; step <= 5; ++step) {
        input.move(0, handle + QPoint(4 * step, 0));
        drawn();
    }
    const double dragged = planes->plane(0).place();
    EXPECT_EQ(planes->plane(0).position.value(), 0.2) << "written at the end";
    input.release(OruMouse::ButtonPick, 0, handle + QPoint(20, 0));
    EXPECT_EQ(planes->plane(0).position.value(), dragged);
    ASSERT_EQ(steps.size(), 1u);

    const auto& ctx = host.context();
    const auto pixelOf = [&](double x) {
        return Vector3(static_cast<float>(x), 0, 0)
            .project(ctx.modelView, ctx.projection, ctx.viewport.data())
            .x;
    };
    EXPECT_NEAR(pixelOf(dragged) - pixelOf(0.2), 20.0f, 0.1f) << "as far as the pointer";
    steps[0].undo(host.scene());
    EXPECT_EQ(planes->plane(0).position.value(), 0.2);
}

TEST_F(Section, IsKeptInAFile)
{
    cut(1, 0.25, true);
    const QByteArray text = OruPropertiesFile::text(host.scene());
    cut(1, -1.0, false);
    planes->plane(1).active.setValue(false);
    QString error;
    ASSERT_TRUE(OruPropertiesFile::load(host.scene(), text, "state", &error)) << error.toStdString();
    EXPECT_TRUE(planes->plane(1).active.value());
    EXPECT_EQ(planes->plane(1).position.value(), 0.25);
    EXPECT_TRUE(planes->plane(1).flipped.value());
}
