// What is measured in a scene: which point a pixel means, what the labels say and where they are.

#include "hosts/mesh/Measures.h"

#include "Scene/core/OruSceneSelectContext.h"
#include "contracts/core/OruPropertiesFile.h"
#include "contracts/vis/OruVisHitRecordQuery.h"
#include "hosts/host/HostScene.h"
#include "hosts/mesh/BoxMeasure.h"
#include "hosts/mesh/DistanceMeasure.h"
#include "hosts/mesh/ModelParts.h"
#include "hosts/mesh/PartPlace.h"
#include "tests/hosts/Models.h"
#include "tests/support/GlContext.h"
#include "tests/support/GlRecorder.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>

using namespace hostkit;
using namespace kelvartest;
using Kelvar::Math::Matrix;
using Kelvar::Math::NumberFormat;
using Kelvar::Math::Vector3;
using Kind = SnapFinder::Kind;

namespace {

/// A view of 600 x 400 pixels in which one unit is 50 pixels, the origin in its middle.
struct MeasuresGLTest : testing::Test
{
    GlContext gl{QSize(600, 400)};
    std::unique_ptr<HostScene> host{new HostScene};
    OruVisList& list = host->scene().render.visualizations;
    Measures& measures = *new Measures(list.group);

    MeasuresGLTest()
    {
        host->setSize(gl.size());
        look(Matrix());
        list["kelvar logo"]->setValue("visible", "false");
        host->scene().render.setValue("background", "#ff38465a");
    }

    void TearDown() override
    {
        EXPECT_EQ(gl.faults(), "");
        host.reset();
        EXPECT_EQ(GlRecorder::instance().liveObjects(), 0);
    }

    /// From the front: x to the right, y upwards.
    void look(const Matrix& turn)
    {
        host->scene().setViewpoint("viewpoint", turn * Matrix::scale(0.25f));
        host->changed();
    }

    PartVisualization& add(const MeshSource& source, const Origin& origin = {})
    {
        Model model;
        model.name = source.name;
        model.origin = origin;
        model.parts.emplace_back(*ShapeBuilder::build(source, [](float) {}));
        OruVisList& made = ModelParts(list).add(model);
        if (!measures.parent()) {
            list.insert(&measures, false);
        }
        host->changed();
        return dynamic_cast<PartVisualization&>(*made.at(0));
    }

    template <typename Kind>
    Kind& measured(const Point& from, const Point& to)
    {
        auto* const made = new Kind(list.group);
        made->setPoints(from, to);
        made->rename(measures.freeName(made->kindName()));
        measures.insert(made, false);
        host->changed();
        return *made;
    }

    QPoint pixelOf(const Vector3& place)
    {
        host->view();
        const OruSceneEventContext& ctx = host->context();
        const Vector3 window = place.project(ctx.modelView, ctx.projection, ctx.viewport.data());
        return {static_cast<int>(std::floor(window.x)), static_cast<int>(std::floor(window.y))};
    }

    std::optional<double> depthAt(const QPoint& pixel, int size)
    {
        OruSceneSelectContext select(host->context());
        select.pickPoint = pixel;
        select.pickSize = QSize(size, size);
        OruScene::setViewing(select);
        const OruVisHitRecordList hits = host->scene().render.select(select);
        return OruVisHitRecordQuery::any(hits)
                   ? std::make_optional(OruVisHitRecordQuery::top(hits, nullptr, nullptr).distance)
                   : std::nullopt;
    }

    SnapFinder::Snap snap(const PartVisualization& part, const QPoint& pixel)
    {
        host->draw();
        const auto depth = depthAt(pixel, 3);
        EXPECT_TRUE(depth) << "nothing at " << pixel.x() << ", " << pixel.y();
        const SnapFinder finder(*PartView::of(host->context()), 8.0,
                                [this](const QPoint& at, int size) { return depthAt(at, size); });
        return finder.find(part, pixel, depth.value_or(1.0));
    }

    QImage frame()
    {
        host->draw();
        return gl.grab();
    }
};

double apart(const Point& point, const Vector3& other)
{
    return std::hypot(point[0] - other.x, point[1] - other.y, point[2] - other.z);
}

/// Where a label is: the smallest rectangle round all pixels of plates. The rim of a line has that color,
/// too, but is thin.
QRect labelIn(const QImage& picture)
{
    const auto isPlate = [&](int x, int y) {
        const QColor at = picture.valid(x, y) ? picture.pixelColor(x, y) : QColor(Qt::white);
        return std::abs(at.red() - 22) + std::abs(at.green() - 27) + std::abs(at.blue() - 35) < 40;
    };
    QRect box;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            const bool tall = isPlate(x, y - 5) || isPlate(x, y + 5);
            const bool wide = isPlate(x - 5, y) || isPlate(x + 5, y);
            box = tall && wide && isPlate(x, y) ? box.united(QRect(x, y, 1, 1)) : box;
        }
    }
    return box;
}

/// The largest one of a color of a pixel.
int difference(const QImage& one, const QImage& other)
{
    int largest = 0;
    for (int y = 0; y < one.height(); ++y) {
        for (int x = 0; x < one.width(); ++x) {
            largest = std::max(largest, std::abs(qGreen(one.pixel(x, y)) - qGreen(other.pixel(x, y))));
        }
    }
    return largest;
}

MeshSource thin(Primitive primitive)
{
    MeshSource source;
    source.primitive = primitive;
    source.name = QStringLiteral("thin");
    source.positions = {Vector3(-2, 0, 0), Vector3(2, 1, 0)};
    source.indices = {0, 1};
    return source;
}

/// A pixel some pixels beside what a place in the scene projects to, and what is meant by it.
struct SnapRow
{
    const char* name;
    Vector3 place;
    QPoint beside;
    Kind kind;
    Vector3 point;
    /// What a pixel leaves open, in units.
    double tolerance;
};

const Matrix slanting =
    Matrix::rotate(Kelvar::Math::VectorY, -30.0f) * Matrix::rotate(Kelvar::Math::VectorX, 25.0f);

} // namespace

TEST_F(MeasuresGLTest, APixelMeansTheCornerOrTheEdgeNearByElseThePlaceOnTheSurface)
{
    PartVisualization& cube = add(cubeSource());
    const SnapRow rows[] = {
        {"on a corner", {1, 1, 1}, {0, -1}, Kind::Vertex, {1, 1, 1}, 1e-9},
        {"near a corner", {1, 1, 1}, {-4, -5}, Kind::Vertex, {1, 1, 1}, 1e-9},
        {"too far from a corner, and from edges", {1, 1, 1}, {-12, -12}, Kind::Face, {0.73f, 0.7f, 1}, 0.06},
        {"on an edge", {0, 1, 1}, {0, -1}, Kind::Edge, {0, 1, 1}, 0.04},
        {"near an edge", {0, 1, 1}, {0, -6}, Kind::Edge, {0, 1, 1}, 0.1},
        {"beside an edge of the outline", {1, 0, -1}, {-3, 0}, Kind::Edge, {1, 0, -1}, 0.1},
        {"on a face", {0, 0, 1}, {0, 0}, Kind::Face, {0, 0, 1}, 0.04},
        {"where a hidden edge runs behind", {-1, 0.5f, -1}, {0, 0}, Kind::Face, {-0.467f, 1, -0.068f}, 0.05},
    };
    look(slanting);
    for (const SnapRow& row : rows) {
        const SnapFinder::Snap found = snap(cube, pixelOf(row.place) + row.beside);
        EXPECT_EQ(found.kind, row.kind) << row.name;
        EXPECT_LE(apart(found.point, row.point), row.tolerance)
            << row.name << ": " << found.point[0] << ' ' << found.point[1] << ' ' << found.point[2];
    }
    cube.setValue("edgeAngle", "120"); // none bends as much
    EXPECT_EQ(snap(cube, pixelOf({1, 1, 1}) - QPoint(4, 5)).kind, Kind::Face);
}

TEST_F(MeasuresGLTest, OfCornersBehindEachOtherTheNearOneIsMeantAndWhatIsCoveredIsPassedOver)
{
    const PartVisualization& back = add(cubeSource());
    EXPECT_EQ(snap(back, pixelOf({1, 1, 0}) - QPoint(2, 2)).point, (Point{1, 1, 1}));

    // A plate of a few pixels whose far corner lies a fraction of a pixel nearer to the pointer.
    const QString thin = QStringLiteral("1 0 0 0 0 1 0 0 0 0 0.05 0 0 0 0 1");
    list["cube"]->childByName("cube")->setValue("offset", thin);
    for (const float degrees : {-2.0f, 2.0f}) {
        look(Matrix::rotate(Kelvar::Math::VectorY, degrees));
        const SnapFinder::Snap found = snap(back, pixelOf({1, 1, 0.05f}) - QPoint(4, 0));
        EXPECT_EQ(found.kind, Kind::Vertex) << degrees;
        EXPECT_GT(found.point[2], 0.0) << degrees;
    }
    list["cube"]->childByName("cube")->setValue("offset", "1 0 0 0 0 1 0 0 0 0 1 0 0 0 0 1");
    look(Matrix());

    MeshSource cover = cubeSource(Vector3(2.1f, 0.0f, 3.0f));
    cover.name = QStringLiteral("cover");
    add(cover); // its left side lies in front of the right corners
    host->draw();
    const QPoint beside = pixelOf({0.96f, 0.5f, 1});
    EXPECT_EQ(snap(back, beside).kind, Kind::Edge);
    EXPECT_EQ(snap(back, beside).point[0], 1.0);
    list["cover"]->setValue("visible", "false");
    EXPECT_EQ(snap(back, pixelOf({0.96f, 0.96f, 1})).point, (Point{1, 1, 1}));
    list["cover"]->setValue("visible", "true");
    list["cover"]->childByName("cover")->setValue("offset", "1 0 0 0 0 1 0 0 0 0 1 0 -0.2 0 0 1");
    host->changed();
    EXPECT_EQ(snap(back, pixelOf({0.86f, 0.86f, 1})).kind, Kind::Edge);
    EXPECT_EQ(snap(back, pixelOf({0.86f, 0.5f, 1})).kind, Kind::Face);
}

TEST_F(MeasuresGLTest, PointsAreThoseOfThePartWhereItIsShown)
{
    PartVisualization& cube = add(cubeSource());
    cube.setValue("offset", "1 0 0 0 0 1 0 0 0 0 1 0 0.5 0 0 1");
    list["cube"]->setValue("up", "y"); // turned about x: y goes where z was
    host->changed();
    EXPECT_EQ(snap(cube, pixelOf({1.5f, 1, 1}) - QPoint(2, 2)).point, (Point{1.5, 1, 1}));
    cube.setValue("offset", "0.8 0.6 0 0 -0.6 0.8 0 0 0 0 1 0 0 0 0 1");
    const PartPlace::Box box = PartPlace::boxInScene(cube);
    EXPECT_NEAR(box.second[0], 1.4, 1e-6);
    EXPECT_NEAR(box.second[1], 1.0, 1e-6);
}

TEST_F(MeasuresGLTest, WhatIsRoundHasNoCornersAndLinesAndPointsHave)
{
    const PartVisualization& sphere = add(sourceOf(bumpySphere(2000, 2.0f)));
    for (int x = -80; x <= 80; x += 7) {
        const SnapFinder::Snap found = snap(sphere, QPoint(300 + x, 200 + x / 3));
        EXPECT_EQ(found.kind, Kind::Face) << x;
        EXPECT_NEAR(apart(found.point, Vector3()), 2.0, 0.11) << x;
    }
    list["sample"]->setValue("visible", "false");
    const PartVisualization& lines = add(thin(Primitive::Lines));
    EXPECT_EQ(snap(lines, pixelOf({2, 1, 0}) - QPoint(3, 1)).point, (Point{2, 1, 0}));
    const SnapFinder::Snap middle = snap(lines, pixelOf({0, 0.5f, 0}));
    EXPECT_EQ(middle.kind, Kind::Edge);
    EXPECT_NEAR(middle.point[1], 0.5 + middle.point[0] / 4.0, 1e-6);
    lines.parent()->setValue("visible", "false");
    const PartVisualization& points = add(thin(Primitive::Points));
    EXPECT_EQ(snap(points, pixelOf({2, 1, 0})).point, (Point{2, 1, 0}));
}

TEST_F(MeasuresGLTest, TellsLengthsAsPeopleReadThem)
{
    const NumberFormat usual;
    const struct
    {
        Point from, to;
        QString unit;
        NumberFormat format;
        const char* text;
    } rows[] = {
        {{0, 0, 0}, {3, 4, 0}, "mm", usual, "5 mm\ndx 3   dy 4   dz 0"},
        {{1, 1, 1}, {101, -22.456789, 1}, "", usual, "102.71\ndx 100   dy -23.46   dz 0"},
        {{0, 0, 0}, {1234567.25, 1e-3, 0}, "m", usual, "1234567 m\ndx 1234567   dy 0   dz 0"},
        {{0, 0, 0}, {0.000123456, 0, -1e-9}, "m", usual, "0.00012346 m\ndx 0.00012346   dy 0   dz 0"},
        {{0, 0, 0}, {0.1f, 0, 0}, "m", NumberFormat(',', 0, 3), "0,1 m\ndx 0,1   dy 0   dz 0"},
        {{0, 0, 0}, {0, 0, 0}, "m", usual, "0 m\ndx 0   dy 0   dz 0"},
    };
    add(cubeSource());
    for (const auto& row : rows) {
        DistanceMeasure& measure = measured<DistanceMeasure>(row.from, row.to);
        measure.setUnit(row.unit);
        EXPECT_EQ(measure.text(row.format), QString(row.text));
    }
    EXPECT_EQ(measured<BoxMeasure>({-1, 0, 2}, {1.25, 0.5, 12}).text(usual), "x 2.25   y 0.5   z 10");
}

TEST_F(MeasuresGLTest, KeepsEveryDigitFarFromTheOrigin)
{
    const Origin far = {1e6, -2e6, 3e5};
    const PartVisualization& cube = add(cubeSource(), far);
    EXPECT_EQ(PartPlace::originBeside(measures), far);
    measured<DistanceMeasure>({1e6 - 1.0, -2e6, 3e5 + 1.0}, {1e6 + 0.125, -2e6 + 1.0, 3e5 + 1.0});
    EXPECT_EQ(measures.bounds().min(), Vector3(-1, 0, 1));
    EXPECT_EQ(measures.bounds().max(), Vector3(0.125f, 1, 1));
    EXPECT_EQ(measures.text().section('\n', 1, 1),
              "distance\tdistance\t1.505199\t1.125\t1\t0\t999999\t-2000000\t300001\t1000000.125\t-1999999\t"
              "300001\t");
    const QImage shown = frame();
    EXPECT_NE(labelIn(shown), QRect());
    const QRect label = labelIn(shown);
    EXPECT_NEAR(label.center().x(), 300 - 22, 2) << cube.name().toStdString();
}

TEST_F(MeasuresGLTest, AStateBringsMeasuresBackBitByBit)
{
    add(cubeSource());
    measured<DistanceMeasure>({0.1, 1.0 / 3.0, 1e-9}, {1, 2, 3}).setUnit("mm");
    measured<DistanceMeasure>({0, 0, 0}, {1, 2, 3});
    measured<BoxMeasure>({-1, -1, -1}, {1, 1, 1});
    const QByteArray state = OruPropertiesFile::text(host->scene());
    const QImage before = frame();
    while (measures.size() > 0) {
        measures.erase(measures.at(0));
    }
    QString error;
    ASSERT_TRUE(OruPropertiesFile::load(host->scene(), state, "state", &error)) << error.toStdString();
    EXPECT_EQ(OruPropertiesFile::text(host->scene()), state);
    EXPECT_EQ(frame(), before);
    EXPECT_EQ(measures.freeName("distance"), "distance.3");
}

TEST_F(MeasuresGLTest, TheLabelFollowsTheViewAndStaysSharpInPictures)
{
    add(cubeSource());
    const QImage without = frame();
    measured<DistanceMeasure>({-8, 3, 0}, {8, 3, 0}); // its ends are out of sight
    const QRect first = labelIn(frame());
    EXPECT_EQ(first.center().x(), 299);
    EXPECT_EQ(first.center().y(), 50);
    look(Matrix::translate(Vector3(0.4f, -1, 0)));
    EXPECT_EQ(labelIn(frame()), first.translated(20, 50));

    look(Matrix::translate(Vector3(0.41f, -1.01f, 0))); // half a pixel on
    PictureOptions options;
    const QRect label = labelIn(frame()).adjusted(4, 4, -4, -4);
    options.samples = 1;
    const QImage plain = host->picture(gl.size(), options);
    options.samples = 8;
    // The line shines through the plate; a letter that had moved would differ by far more.
    EXPECT_LT(difference(host->picture(gl.size(), options).copy(label), plain.copy(label)), 40);
    options.overlayScale = 2.0;
    EXPECT_NEAR(labelIn(host->picture(gl.size(), options)).height(), 2 * first.height() - 10, 4);
    measures.setValue("visible", "false");
    look(Matrix());
    EXPECT_EQ(frame(), without);
}

TEST_F(MeasuresGLTest, LinesAreDimWhereSomethingHidesThemAndCannotBePicked)
{
    add(cubeSource());
    host->draw();
    const auto depth = depthAt(QPoint(300, 200), 1);
    const QColor part = frame().pixelColor(275, 199);
    measured<DistanceMeasure>({-5, 0, -1}, {2, 0, -1});
    const QImage shown = frame();
    const auto brightest = [&](int x) {
        int most = 0;
        for (int y = 197; y <= 202; ++y) {
            most = std::max(most, shown.pixelColor(x, y).green());
        }
        return most;
    };
    EXPECT_EQ(brightest(100), 214);
    EXPECT_EQ(brightest(375), 214);
    EXPECT_GT(brightest(330), part.green() + 30);
    EXPECT_LT(brightest(330), 180);
    EXPECT_EQ(depthAt(QPoint(300, 200), 1), depth);
    EXPECT_EQ(depthAt(QPoint(100, 200), 3), std::nullopt);
}
