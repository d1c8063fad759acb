// Points and lines as a scene draws and picks them. What their picks say at all widths is PickTruthGLTest's.

#include "Scene/core/OruSceneSelectContext.h"
#include "contracts/core/OruStringBuilder.h"
#include "contracts/ogl/OruOglFunctions.h"
#include "contracts/ogl/OruOglGl.h"
#include "contracts/vis/OruVisHitRecordQuery.h"
#include "hosts/host/HostScene.h"
#include "hosts/mesh/LineVisualization.h"
#include "hosts/mesh/ModelParts.h"
#include "hosts/mesh/PointVisualization.h"
#include "tests/hosts/Models.h"
#include "tests/support/GlContext.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>
#include <random>
#include <vector>

using namespace hostkit;
using namespace kelvartest;
using Kelvar::Math::Matrix;
using Kelvar::Math::Vector3;

namespace {

constexpr uint32_t pureGreen = 0xFF00FF00u;

MeshSource thin(Primitive primitive, std::vector<Vector3> positions)
{
    MeshSource source;
    source.primitive = primitive;
    source.name = QStringLiteral("thin");
    source.material.color = QColor(0, 0, 255);
    source.positions = std::move(positions);
    for (uint32_t i = 0; i < source.positions.size(); ++i) {
        source.indices.push_back(i);
    }
    return source;
}

MeshSource withNormals(MeshSource source, const Vector3& normal)
{
    source.normals.assign(source.positions.size(), normal);
    return source;
}

MeshSource green(MeshSource source)
{
    source.colors.assign(source.positions.size(), pureGreen);
    return source;
}

/// A view along -z of 200 x 200 pixels, in which one unit is 100 pixels and the origin in the middle: at the
/// lower left corner of pixel 100, 100.
struct ThinVisualizationGLTest : ::testing::Test
{
    ThinVisualizationGLTest()
    {
        host.setSize(gl.size());
        host.scene().setViewpoint("viewpoint", Matrix());
        list()["kelvar logo"]->setValue("visible", "false");
    }
    void TearDown() override { EXPECT_EQ(gl.faults(), ""); }

    OruVisList& list() { return host.scene().render.visualizations; }

    OruVisualization& add(const MeshSource& source)
    {
        Model model;
        model.parts.emplace_back(*ShapeBuilder::build(source, [](float) {}));
        ModelParts(list()).add(model);
        host.changed();
        return dynamic_cast<OruVisualization&>(*list().at(list().size() - 1));
    }

    QImage drawn()
    {
        host.draw();
        return gl.grab();
    }

    QColor drawnAt(int x, int y) { return drawn().pixelColor(x, gl.size().height() - 1 - y); }

    /// The text of what is picked at a single pixel.
    QString told(const QPoint& pixel)
    {
        OruSceneSelectContext sc(host.context());
        sc.pickPoint = pixel;
        sc.pickSize = QSize(1, 1);
        OruScene::setViewing(sc);
        boost::weak_ptr<IOruVisEventHandler> handler;
        const auto hit = OruVisHitRecordQuery::top(host.scene().render.select(sc), &handler, nullptr);
        QString tooltip;
        if (const auto alive = handler.lock()) {
            alive->OnHoverEnter(hit, OruStringBuilder(Kelvar::Math::NumberFormat('.', 0, -1)), tooltip);
        }
        return tooltip;
    }

    GlContext gl{QSize(200, 200)};
    HostScene host{QString(), QString(), QString()};
};

const Vector3 towards(0, 0, 1);

/// Remembers the state that it finds in the 3D pass.
struct Onlooker : OruVisualization
{
    explicit Onlooker(OruModifiedGroup& sharedGroup)
        : OruVisualization(sharedGroup, "onlooker")
    {}
    void draw3d(const DrawContext&) override
    {
        glGetFloatv(GL_POINT_SIZE, &found[0]);
        glGetFloatv(GL_LINE_WIDTH, &found[1]);
        found[2] = glIsEnabled(GL_LIGHTING);
        found[3] = glIsEnabled(GL_COLOR_SUM);
    }
    std::array<float, 4> found{};
};

/// A point, or a line to the right of it, at the middle of a pixel.
MeshSource pointAt(float x, float y, float z = 0.0f)
{
    return thin(Primitive::Points, {{x + 0.005f, y + 0.005f, z}});
}

MeshSource lineAt(float x, float y, float z = 0.0f)
{
    return thin(Primitive::Lines, {{x - 0.095f, y + 0.005f, z}, {x + 0.105f, y + 0.005f, z}});
}

TEST_F(ThinVisualizationGLTest, ShowsColorsAsTheyAreUnlessThereAreNormals)
{
    const QColor blue(0, 0, 255);
    const struct
    {
        const char* name;
        MeshSource source;
        bool marked;
        QColor color;
    } rows[] = {
        {"a point", pointAt(0, -0.8f), false, blue},
        {"a line", lineAt(0, -0.6f), false, blue},
        {"colors of their own", green(pointAt(0, -0.4f)), false, QColor(0, 255, 0)},
        {"a mark on these", green(pointAt(0, -0.2f)), true, QColor(89, 255, 0)},
        {"a mark", lineAt(0, 0), true, QColor(255, 183, 0)},
        {"turned to the light", withNormals(pointAt(0, 0.2f), towards), false, QColor(10, 10, 241)},
        {"turned away", withNormals(lineAt(0, 0.4f), -towards), false, QColor(10, 10, 10)},
    };
    // Drawn behind these, and lit.
    MeshSource wall = cubeSource(Vector3(0, 0, -5));
    wall.material.color = Qt::white;
    add(wall);
    const QImage bare = drawn();
    for (const auto& row : rows) {
        add(row.source).setValue("marked", row.marked ? "true" : "false");
    }
    auto* const onlooker = new Onlooker(host.scene().group); // the list's; drawn last
    list().insert(onlooker, false);
    host.changed();
    const QImage all = drawn();
    EXPECT_THAT(onlooker->found, testing::ElementsAre(1.0f, 1.0f, 1.0f, 0.0f));
    for (std::size_t i = 0; i < std::size(rows); ++i) {
        const QPoint place(100, 199 - 20 * (static_cast<int>(i) + 1));
        const QColor seen = all.pixelColor(place);
        EXPECT_NEAR(seen.red(), rows[i].color.red(), 3) << rows[i].name;
        EXPECT_NEAR(seen.green(), rows[i].color.green(), 3) << rows[i].name;
        EXPECT_NEAR(seen.blue(), rows[i].color.blue(), 3) << rows[i].name;
        EXPECT_EQ(all.pixelColor(place + QPoint(0, 10)), bare.pixelColor(place + QPoint(0, 10)));
    }
}

TEST_F(ThinVisualizationGLTest, WidthsAreWholePixelsThatTheGlCanDraw)
{
    const std::pair<const char*, int> rows[] = {{"0", 1},   {"-7", 1},  {"nonsense", 1}, {"2.4", 2},
                                                {"2.6", 3}, {"20", 20}, {"100000", 200}};
    const std::pair<const char*, OruVisualization*> things[] = {{"pointSize", &add(pointAt(0, 0))},
                                                                {"lineWidth", &add(lineAt(0, 0))}};
    for (const auto& [key, thing] : things) {
        things[0].second->visible.setValue(thing == things[0].second);
        things[1].second->visible.setValue(thing == things[1].second);
        for (const auto& [text, expected] : rows) {
            thing->setValue(key, text);
            host.changed();
            const QImage picture = drawn();
            int height = 0;
            for (int y = 1; y < 199; ++y) {
                height += picture.pixelColor(100, y) != QColor(Qt::black) ? 1 : 0;
            }
            EXPECT_EQ(height, std::min(expected, 198)) << key << " " << text;
        }
        const auto& part = dynamic_cast<ThinVisualization&>(*thing);
        float range[2];
        glGetFloatv(key == things[0].first ? GL_ALIASED_POINT_SIZE_RANGE : GL_ALIASED_LINE_WIDTH_RANGE,
                    range);
        EXPECT_EQ(part.drawnWidth(), std::floor(range[1])) << key;
    }
}

TEST_F(ThinVisualizationGLTest, IsPickedWhereItIsDrawnAndTellsItsSize)
{
    add(cubeSource(Vector3(0, 0, -1))); // its face lies at z = 0, and covers the window
    add(lineAt(-0.5f, 0)).setValue("lineWidth", "7");
    add(pointAt(0.5f, 0)).setValue("pointSize", "81");
    const std::pair<QPoint, const char*> rows[] = {
        {{50, 100}, "thin\nsegments: 1"},   {{50, 103}, "thin\nsegments: 1"},
        {{50, 104}, "cube\ntriangles: 12"}, {{50, 97}, "thin\nsegments: 1"},
        {{50, 96}, "cube\ntriangles: 12"},  {{150, 100}, "thin.2\npoints: 1"},
        {{190, 60}, "thin.2\npoints: 1"},   {{191, 60}, "cube\ntriangles: 12"}};
    host.draw();
    for (const auto& [pixel, text] : rows) {
        EXPECT_EQ(told(pixel).toStdString(), text) << pixel.x() << "," << pixel.y();
    }
}

TEST_F(ThinVisualizationGLTest, CullingOfLargeSetsTakesNothingFromTheView)
{
    std::mt19937 random(1);
    std::uniform_real_distribution<float> unit(-1.0f, 1.0f);
    for (const Primitive primitive : {Primitive::Points, Primitive::Lines}) {
        // The same once as one set and once as many, which are too small to be culled.
        std::vector<Vector3> places;
        std::vector<OruVisualization*> small;
        for (int i = 0; i < 8; ++i) {
            std::vector<Vector3> some;
            for (int k = 0; k < 4000; ++k) {
                const Vector3 place(unit(random), unit(random), unit(random));
                const bool ends = primitive == Primitive::Lines && k % 2 == 1;
                some.push_back(ends ? some.back() + place * 0.05f : place);
            }
            small.push_back(&add(thin(primitive, some)));
            places.insert(places.end(), some.begin(), some.end());
        }
        OruVisualization& large = add(thin(primitive, places));
        for (const float zoom : {0.5f, 4.0f, 30.0f}) {
            host.setView(Matrix::translate(Vector3(-0.5f, -0.7f, 0)) * Matrix::scale(zoom));
            QImage pictures[2];
            for (const bool whole : {false, true}) {
                large.visible.setValue(whole);
                std::for_each(small.begin(), small.end(),
                              [&](auto* part) { part->visible.setValue(!whole); });
                host.changed();
                pictures[whole] = drawn();
            }
            EXPECT_EQ(pictures[0], pictures[1]) << zoom;
        }
        large.visible.setValue(false);
    }
}

} // namespace
