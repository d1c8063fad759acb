// How surfaces look: lit, free of specks, with their edges, as a wireframe.

#include "Scene/core/OruSceneRenderContext.h"
#include "Scene/core/OruSceneSelectContext.h"
#include "contracts/vis/OruVisHitRecordQuery.h"
#include "hosts/host/HostScene.h"
#include "hosts/host/LightRig.h"
#include "hosts/mesh/MeshVisualization.h"
#include "tests/hosts/Models.h"
#include "tests/support/GlContext.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>
#include <vector>

using namespace hostkit;
using namespace kelvartest;
using Kelvar::Math::Matrix;
using Kelvar::Math::Vector3;

namespace {

/// The source with its triangles as `change` leaves their corners, and without those for which it says false.
template <typename Change>
MeshSource changed(MeshSource source, Change change)
{
    std::vector<uint32_t> indices;
    for (std::size_t i = 0; i < source.indices.size(); i += 3) {
        std::array<uint32_t, 3> triangle{source.indices[i], source.indices[i + 1], source.indices[i + 2]};
        if (change(triangle)) {
            indices.insert(indices.end(), triangle.begin(), triangle.end());
        }
    }
    source.indices = indices;
    return source;
}

int differences(const QImage& a, const QImage& b)
{
    int count = 0;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x) {
            count += std::abs(qGray(a.pixel(x, y)) - qGray(b.pixel(x, y))) > 6 ? 1 : 0;
        }
    }
    return count;
}

struct FacesAndEdgesGLTest : testing::Test
{
    GlContext gl{QSize(400, 300)};
    HostScene host{QString(), QString(), QString()};

    FacesAndEdgesGLTest() { host.setSize(gl.size()); }
    void TearDown() override { EXPECT_EQ(gl.faults(), ""); }

    MeshVisualization& add(const MeshSource& source, const char* name = "part")
    {
        auto* part = new MeshVisualization(host.scene().group, built(source));
        part->rename(name);
        host.scene().render.visualizations.insert(part, false);
        host.changed();
        return *part;
    }

    void show(const Matrix& view)
    {
        host.scene().setViewpoint("viewpoint", view);
        host.changed();
        host.draw();
    }

    QImage drawn()
    {
        host.draw();
        return gl.grab();
    }

    QImage pictureOf(const MeshSource& source, const char* position)
    {
        MeshVisualization& part = add(source);
        EXPECT_TRUE(host.showFrom(position));
        const QImage image = drawn();
        host.scene().render.visualizations.erase(&part);
        return image;
    }

    QPointF pixelOf(const Vector3& point)
    {
        const OruSceneEventContext& ctx = host.context();
        const Vector3 at = point.project(ctx.modelView, ctx.projection, ctx.viewport.data());
        return {at.x, gl.size().height() - at.y};
    }

    /// How much of the way between two points of the model has such a pixel on it or beside it.
    double lineShare(const QImage& image, const Vector3& a, const Vector3& b, bool (*isLine)(int gray))
    {
        const QPointF way = pixelOf(b) - pixelOf(a);
        const bool flat = std::abs(way.x()) > std::abs(way.y());
        const int length = static_cast<int>(std::max(std::abs(way.x()), std::abs(way.y())));
        int found = 0;
        // Off its ends, where other lines meet it.
        for (int i = 4; i < length - 4; ++i) {
            const QPointF at = pixelOf(a) + way * i / length;
            const QPoint pixel(static_cast<int>(std::floor(at.x())), static_cast<int>(std::floor(at.y())));
            const QPoint aside = flat ? QPoint(0, 1) : QPoint(1, 0);
            found += isLine(qGray(image.pixel(pixel))) || isLine(qGray(image.pixel(pixel - aside))) ||
                     isLine(qGray(image.pixel(pixel + aside)));
        }
        return static_cast<double>(found) / (length - 8);
    }

    unsigned int pickAt(const QPoint& pixel, int size)
    {
        OruSceneSelectContext sc(host.context());
        sc.pickPoint = QPoint(pixel.x(), gl.size().height() - 1 - pixel.y());
        sc.pickSize = QSize(size, size);
        OruScene::setViewing(sc);
        return OruVisHitRecordQuery::top(host.scene().render.select(sc), nullptr, nullptr).name;
    }
};

TEST_F(FacesAndEdgesGLTest, ShowsNoSpecksOfTheInsideAlongAnOutline)
{
    const MeshSource whole = sourceOf(bumpySphere(20000, 1.0f));
    const std::pair<const char*, Vector3> rows[] = {
        {"iso", Vector3(-1, 1, -1)}, {"x", Vector3(-1, 0, 0)}, {"-z", Vector3(0, 0, 1)}};
    for (const auto& [position, behind] : rows) {
        // A hole that no one sees makes it a mesh that is drawn from both sides.
        const MeshSource holed = changed(whole, [&, away = behind.normalized()](const auto& triangle) {
            return dot(whole.positions[triangle[0]].normalized(), away) < 0.95f;
        });
        EXPECT_LE(differences(pictureOf(holed, position), pictureOf(whole, position)), 1) << position;
    }
}

TEST_F(FacesAndEdgesGLTest, LightsTrianglesThatLieTheOtherWayRoundAsTheirNormalsSay)
{
    const MeshSource whole = sourceOf(bumpySphere(5000, 1.0f));
    const MeshSource mixed = changed(whole, [](auto& triangle) {
        if (triangle[0] % 3 == 0) {
            std::swap(triangle[1], triangle[2]);
        }
        return true;
    });
    EXPECT_LE(differences(pictureOf(mixed, "iso"), pictureOf(whole, "iso")), 1);
}

TEST_F(FacesAndEdgesGLTest, RigLeavesNoSideDarkAndBurnsNothingOut)
{
    ASSERT_TRUE(LightRig::apply(host.scene()));
    MeshSource sphere = sourceOf(bumpySphere(20000, 1.0f));
    sphere.material.color = Qt::white;
    const QImage image = pictureOf(sphere, "iso");
    std::vector<int> brightest;
    for (int y = 1; y < image.height() - 1; ++y) {
        for (int x = 1; x < image.width() - 1; ++x) {
            const QColor color = image.pixelColor(x, y);
            if (color != QColor(Qt::black)) {
                brightest.push_back(std::max({color.red(), color.green(), color.blue()}));
            }
        }
    }
    const auto [darkest, lightest] = std::minmax_element(brightest.begin(), brightest.end());
    EXPECT_GT(*darkest, 70);
    EXPECT_LT(*darkest, *lightest / 2) << "form shows";
    EXPECT_GT(*lightest, 230);
    EXPECT_LT(*lightest, 255);
}

/// End `end`, -1 or 1, of an edge of the cube: along axis edge / 4, at a corner of the other two.
Vector3 cornerOf(int edge, float end)
{
    std::array<float, 3> at{};
    at[edge / 4] = end;
    at[(edge / 4 + 1) % 3] = edge & 1 ? 1.0f : -1.0f;
    at[(edge / 4 + 2) % 3] = edge & 2 ? 1.0f : -1.0f;
    return Vector3(at[0], at[1], at[2]);
}

TEST_F(FacesAndEdgesGLTest, DrawsTheEdgesThatAreInViewAndNoOthers)
{
    const auto dark = [](int gray) { return gray < 25; };
    const auto light = [](int gray) { return gray > 125 && gray < 160; };
    const struct
    {
        const char* name;
        float tilt;
        const char* edges;
        QColor color;
        bool (*isLine)(int);
    } rows[] = {{"on white", 50.0f, "edges", Qt::white, dark},
                {"the top at a slant", 78.0f, "edges", Qt::white, dark},
                {"on black", 50.0f, "edges", Qt::black, light},
                {"on black, off", 50.0f, "off", Qt::black, light},
                {"off", 50.0f, "off", Qt::white, dark}};
    LightRig::apply(host.scene());
    QString error;
    ASSERT_TRUE(host.setValue("render/background", "#ff38465a", &error));
    MeshVisualization& cube = add(cubeSource());
    for (const auto& row : rows) {
        cube.color.setValue(row.color);
        cube.edges.setValue(row.edges);
        show(Matrix::rotate(Kelvar::Math::VectorZ, 20.0f) * Matrix::rotate(Kelvar::Math::VectorX, -row.tilt) *
             Matrix::scale(0.4f));
        const QImage image = drawn();
        for (int edge = 0; edge < 12; ++edge) {
            const Vector3 a = cornerOf(edge, -1.0f);
            const Vector3 b = cornerOf(edge, 1.0f);
            const bool shown = b != Vector3(1, 1, -1) && a != Vector3(1, 1, -1) && row.edges[0] == 'e';
            EXPECT_NEAR(lineShare(image, a, b, row.isLine), shown ? 1.0 : 0.0, 0.03)
                << row.name << ", edge " << edge;
        }
    }
}

TEST_F(FacesAndEdgesGLTest, EdgesFadeBeforeTheyCoverAPart)
{
    MeshSource square = cubeSource();
    square.indices.resize(6);
    const Matrix faceOn = Matrix::rotate(Kelvar::Math::VectorX, 180.0f);
    const Matrix slanted = Matrix::rotate(Vector3(1, 1, 1), 50.0f);
    const struct
    {
        const char* name;
        MeshSource source;
        Matrix view;
        int least, most;
    } rows[] = {
        {"a small cube", cubeSource(), slanted * Matrix::scale(0.1f), 50, 400},
        {"one of a few pixels", cubeSource(), slanted * Matrix::scale(0.01f), 0, 0},
        {"a flat part at the near end of the view", square, faceOn * Matrix::scale(0.5f), 500, 650},
    };
    for (const auto& row : rows) {
        MeshVisualization& part = add(row.source);
        show(row.view);
        const QImage plain = drawn();
        part.edges.setValue("edges");
        EXPECT_THAT(differences(drawn(), plain),
                    testing::AllOf(testing::Ge(row.least), testing::Le(row.most)))
            << row.name;
        host.scene().render.visualizations.erase(&part);
    }
}

TEST_F(FacesAndEdgesGLTest, WireframeIsPickedByItsLinesAndSeenThrough)
{
    MeshVisualization& sphere = add(sourceOf(bumpySphere(200, 1.0f)), "sphere");
    sphere.edges.setValue("wireframe");
    ASSERT_TRUE(host.showFrom("iso"));
    const QImage image = drawn();
    const auto isDrawn = [&](int x, int y) { return qGray(image.pixel(x, y)) > 0; };
    int picked = 0;
    int between = 0;
    for (int x = 100; x < 300; x += 7) {
        for (int y = 60; y < 240; y += 5) {
            const bool hit = pickAt({x, y}, 1) == sphere.hitName();
            bool near = false;
            for (int i = 0; i < 9; ++i) {
                near = near || isDrawn(x - 1 + i % 3, y - 1 + i / 3);
            }
            EXPECT_TRUE(hit ? near : !isDrawn(x, y)) << x << "," << y;
            picked += hit ? 1 : 0;
            between += hit ? 0 : 1;
        }
    }
    EXPECT_GT(picked, 50);
    EXPECT_GT(between, 100);

    MeshVisualization& inside = add(cubeSource(), "inside");
    inside.offset.setValue(Matrix::scale(0.4f));
    host.draw();
    int through = 0;
    for (int x = 180; x < 220; ++x) {
        through += pickAt({x, 150}, 1) == inside.hitName() ? 1 : 0;
    }
    EXPECT_GT(through, 10);
    EXPECT_LT(through, 40);
}

} // namespace
