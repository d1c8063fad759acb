#include "hosts/kit/TriangleHierarchy.h"

#include "contracts/core/OruModifiedGroup.h"
#include "contracts/core/OruResource.h"
#include "contracts/ogl/OruOglCache.h"
#include "contracts/ogl/OruOglGeometry.h"
#include "contracts/ogl/OruOglText.h"
#include "contracts/vis/OruVisPickVolume.h"
#include "hosts/kit/SampleMeshes.h"
#include "tests/math/MathMatchers.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <random>
#include <tuple>
#include <vector>

namespace {

using hostkit::SampleMesh;
using hostkit::TriangleHierarchy;
using Hit = TriangleHierarchy::Hit;
using Kelvar::Math::Matrix;
using Kelvar::Math::Vector3;

constexpr float nan = std::numeric_limits<float>::quiet_NaN();

/// A select context with a viewport of 64 x 48 pixels.
class PickStage
{
public:
    OruVisPickVolume volume(QMatrix4x4 const& modelView, QMatrix4x4 const& projection, QPoint pixel, int size)
    {
        context_.modelView = fromQt(modelView);
        context_.projection = fromQt(projection);
        context_.pickPoint = pixel;
        context_.pickSize = QSize(size, size);
        return OruVisPickVolume(context_);
    }

private:
    OruModifiedGroup group_;
    OruOglGeometry geometry_{group_};
    OruResource resource_{QString(), QString(), QString()};
    OruOglCache cache_{resource_};
    OruOglText text_{cache_, 7, QStringLiteral("_default_")};
    OruVisualization::SelectContext context_{
        geometry_, cache_, resource_, OruOglViewport(0, 0, 64, 48), text_, Kelvar::Math::NumberFormat()};
};

/// The depth at which a pixel's centre sees a triangle: the point a + u (b - a) + v (c - a) that the matrix
/// takes to the centre.
std::optional<double> depthAt(double x, double y, Matrix const& toWindow,
                              std::array<Vector3, 3> const& corners)
{
    double f[3][4];
    for (int column = 0; column < 4; ++column) {
        for (int k = 0; k < 3; ++k) {
            f[k][column] = k == 0 ? toWindow(3, column) : 0.0;
            for (int axis = 0; axis < 3; ++axis) {
                double const base = k == 0 ? 0.0 : corners[0][axis];
                f[k][column] += (corners[k][axis] - base) * toWindow(axis, column);
            }
        }
    }
    double g[3][2];
    for (int k = 0; k < 3; ++k) {
        g[k][0] = f[k][0] - x * f[k][3];
        g[k][1] = f[k][1] - y * f[k][3];
    }
    double const det = g[1][0] * g[2][1] - g[2][0] * g[1][1];
    double const u = (g[2][0] * g[0][1] - g[0][0] * g[2][1]) / det;
    double const v = (g[0][0] * g[1][1] - g[1][0] * g[0][1]) / det;
    double const w = f[0][3] + u * f[1][3] + v * f[2][3];
    double const depth = (f[0][2] + u * f[1][2] + v * f[2][2]) / w;
    bool const seen = u >= 0.0 && v >= 0.0 && u + v <= 1.0 && w > 0.0 && depth >= 0.0 && depth <= 1.0;
    return seen ? std::optional<double>(depth) : std::nullopt;
}

std::optional<Hit> pickByTryingAll(SampleMesh const& mesh, OruVisPickVolume const& volume)
{
    std::optional<Hit> best;
    auto const key = [](Hit const& hit) { return std::tie(hit.depth, hit.centreDistance, hit.triangle); };
    for (uint32_t i = 0; i < mesh.indices.size() / 3; ++i) {
        std::array<Vector3, 3> const corners{mesh.positions[mesh.indices[3 * i]],
                                             mesh.positions[mesh.indices[3 * i + 1]],
                                             mesh.positions[mesh.indices[3 * i + 2]]};
        for (int column = 0; column < volume.width(); ++column) {
            for (int row = 0; row < volume.height(); ++row) {
                double const x = volume.x() + column + 0.5;
                double const y = volume.y() + row + 0.5;
                auto const depth = depthAt(x, y, volume.toWindow(), corners);
                if (!depth)
                    continue;
                Hit const hit{static_cast<float>(std::round(*depth * 16777216.0) / 16777216.0),
                              volume.distanceFromCentre(x, y), i};
                if (!best || key(hit) < key(*best))
                    best = hit;
            }
        }
    }
    return best;
}

/// Unconnected triangles in a cube of edge 2 about the origin.
SampleMesh soup(uint32_t triangles, float size)
{
    std::mt19937 random(triangles);
    std::uniform_real_distribution<float> unit(-1.0F, 1.0F);
    auto const point = [&] { return Vector3(unit(random), unit(random), unit(random)); };
    SampleMesh mesh;
    for (uint32_t i = 0; i < triangles; ++i) {
        Vector3 const place = point();
        for (uint32_t corner = 0; corner < 3; ++corner) {
            mesh.indices.push_back(3 * i + corner);
            mesh.positions.push_back(place + point() * size);
        }
    }
    return mesh;
}

SampleMesh twice(SampleMesh mesh)
{
    mesh.indices.insert(mesh.indices.end(), mesh.indices.begin(), mesh.indices.end());
    return mesh;
}

SampleMesh withOutlier(SampleMesh mesh)
{
    mesh.indices.insert(mesh.indices.end(), {0, 1, static_cast<uint32_t>(mesh.positions.size())});
    mesh.positions.emplace_back(1e20F, -2e20F, 3e20F);
    return mesh;
}

struct RandomCase
{
    char const* name;
    SampleMesh mesh;
    bool perspective;
    int pickSize;
    float zoom = 1.0F;
    float scale = 1.0F;
    Vector3 offset = {};
};

/// A view of the cube that RandomCase's scale and offset place the mesh in.
OruVisPickVolume randomView(PickStage& stage, RandomCase const& row, std::mt19937& random)
{
    std::uniform_real_distribution<float> unit(-1.0F, 1.0F);
    QMatrix4x4 projection;
    if (row.perspective)
        projection.perspective(50.0F / row.zoom, 64.0F / 48.0F, 0.5F, 6.0F);
    else
        projection.ortho(-2.0F / row.zoom, 2.0F / row.zoom, -1.5F / row.zoom, 1.5F / row.zoom, 0.5F, 6.0F);
    QMatrix4x4 modelView;
    modelView.translate(0.0F, 0.0F, -1.5F + unit(random));
    modelView.rotate(180.0F * unit(random), QVector3D(unit(random), unit(random), 1.0F));
    modelView.rotate(180.0F * unit(random), QVector3D(unit(random), 1.0F, unit(random)));
    modelView.scale(1.0F / row.scale);
    modelView.translate(-toQt(row.offset));
    QPoint const pixel(32 + static_cast<int>(36 * unit(random)), 24 + static_cast<int>(28 * unit(random)));
    return stage.volume(modelView, projection, pixel, row.pickSize);
}

TEST(TriangleHierarchyTest, AgreesWithTryingEveryTriangle)
{
    RandomCase const rows[] = {
        {"small triangles", soup(400, 0.3F), false, 3},
        {"small triangles, perspective", soup(400, 0.3F), true, 3},
        {"one pixel", soup(900, 0.3F), false, 1},
        {"one pixel, perspective", soup(900, 0.3F), true, 1},
        {"the eye among long triangles", soup(60, 2.5F), true, 9},
        {"long triangles", soup(60, 2.5F), false, 4},
        {"sphere from within and without", hostkit::bumpySphere(1000), true, 5},
        {"sphere, much of it in the window", hostkit::bumpySphere(100), false, 33},
        {"far magnified", soup(100, 1.0F), true, 9, 40.0F},
        {"duplicates", twice(soup(50, 1.0F)), false, 9},
        {"huge coordinates", soup(100, 1.0F), true, 3, 1.0F, 1e15F},
        {"tiny coordinates", soup(100, 1.0F), false, 3, 1.0F, 1e-15F},
        {"far from the origin", soup(100, 1.0F), false, 9, 1.0F, 1.0F, {3000.0F, -5000.0F, 2000.0F}},
        {"one corner far away", withOutlier(soup(100, 1.0F)), true, 3},
        {"single triangle", soup(1, 3.0F), false, 9},
    };
    PickStage stage;
    for (RandomCase const& row : rows) {
        SCOPED_TRACE(row.name);
        SampleMesh mesh = row.mesh;
        for (Vector3& position : mesh.positions)
            position = position * row.scale + row.offset;
        TriangleHierarchy const hierarchy = TriangleHierarchy::build(mesh.positions, mesh.indices);
        std::mt19937 random(1);
        int hits = 0;
        for (int i = 0; i < 60; ++i) {
            OruVisPickVolume const volume = randomView(stage, row, random);
            auto const expected = pickByTryingAll(mesh, volume);
            auto const found = hierarchy.pick(volume);
            ASSERT_EQ(found.has_value(), expected.has_value()) << "view " << i;
            if (!found)
                continue;
            ++hits;
            ASSERT_EQ(found->depth, expected->depth) << "view " << i;
            ASSERT_EQ(found->centreDistance, expected->centreDistance) << "view " << i;
            ASSERT_EQ(found->triangle, expected->triangle) << "view " << i;
        }
        EXPECT_GE(hits, 8);
    }
}

/// Model x and y are pixels, model z is the window depth; the window lies about pixel (10, 10).
struct ExactCase
{
    char const* name;
    std::vector<Vector3> positions;
    std::vector<uint32_t> indices;
    int pickSize;
    bool hit;
    float depth = 0.0F;
    uint32_t triangle = 0;
    double centreDistance = 0.0;
};

std::vector<Vector3> flat(float z)
{
    return {{0, 0, z}, {40, 0, z}, {0, 40, z}};
}

/// 21 pixels wide; the depth rises along x.
std::vector<Vector3> ramp(float from, float to)
{
    return {{0, 0, from}, {0, 21, from}, {21, 0, to}, {21, 21, to}};
}

std::vector<Vector3> spike(float left, float right, float z)
{
    return {{left, 0, z}, {right, 0, z}, {(left + right) / 2, 40, z}};
}

std::vector<Vector3> operator+(std::vector<Vector3> a, std::vector<Vector3> const& b)
{
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

using Indices = std::vector<uint32_t>;
Indices const one{0, 1, 2};
Indices const two{3, 4, 5, 0, 1, 2};
Indices const strip{0, 2, 1, 1, 2, 3};

ExactCase const exactCases[] = {
    {"nothing at all", {}, {}, 3, false},
    {"indices short of a triangle", flat(0.5F), {0, 1}, 3, false},
    {"two indices too many", flat(0.5F), {0, 1, 2, 0, 1}, 3, true, 0.5F},
    {"the nearer one", flat(0.25F) + flat(0.75F), two, 3, true, 0.25F, 1},
    {"back face", flat(0.5F), {0, 2, 1}, 3, true, 0.5F},
    {"the first of equals", flat(0.25F) + flat(0.75F), {3, 4, 5, 1, 2, 0, 0, 1, 2}, 3, true, 0.25F, 1},
    {"index beyond the positions", flat(0.5F), {0, 1, 3, 0, 1, 2}, 3, true, 0.5F, 1},
    {"corner without a place", {{nan, 0, 0}, {40, 0, 0}, {0, 40, 0}}, one, 3, false},
    {"no area", {{0, 10.5F, 0}, {40, 10.5F, 0}, {20, 10.5F, 0}}, {0, 1, 2, 1, 1, 2}, 3, false},
    {"the same corner three times", {{10.5F, 10.5F, 0}}, {0, 0, 0}, 3, false},
    {"on the near plane", flat(0.0F), one, 1, true, 0.0F},
    {"before the near plane", flat(-0.01F), one, 1, false},
    {"on the far plane", flat(1.0F), one, 1, true, 1.0F},
    {"beyond the far plane", flat(1.01F), one, 1, false},
    {"meets the near plane at the pixel", ramp(-1.0F, 1.0F), strip, 1, true, 0.0F},
    {"before the near plane at the pixel", ramp(-1.5F, 1.0F), strip, 1, false},
    {"beyond the far plane at the pixel", ramp(0.0F, 2.5F), strip, 1, false},
    {"pixel centre on an edge", {{10.5F, 0, 0.5F}, {10.5F, 40, 0.5F}, {30, 0, 0.5F}}, one, 1, true, 0.5F},
    {"pixel centre on a corner", {{10.5F, 10.5F, 0.5F}, {20, 10, 0.5F}, {20, 20, 0.5F}}, one, 1, true, 0.5F},
    {"between the pixel centres", spike(10.6F, 11.4F, 0.5F), one, 9, false},
    {"off the centre of the window", spike(11.25F, 11.75F, 0.5F), one, 5, true, 0.5F, 0, 1.0},
    {"nearer beats more central", spike(12.0F, 13.0F, 0.25F) + flat(0.5F), two, 5, true, 0.25F, 1, 2.0},
    {"window of no size", flat(0.5F), one, 0, false},
    {"window of negative size", flat(0.5F), one, -1, false},
};

/// The matrices under which the exact cases hold.
OruVisPickVolume pixelView(PickStage& stage, int pickSize)
{
    QMatrix4x4 projection;
    projection.ortho(0.0F, 64.0F, 0.0F, 48.0F, 0.0F, -1.0F);
    return stage.volume(QMatrix4x4(), projection, QPoint(10, 10), pickSize);
}

TEST(TriangleHierarchyTest, FollowsTheRuleOfTheNearestPixel)
{
    PickStage stage;
    for (ExactCase const& row : exactCases) {
        SCOPED_TRACE(row.name);
        auto const hierarchy = TriangleHierarchy::build(row.positions, row.indices);
        auto const hit = hierarchy.pick(pixelView(stage, row.pickSize));
        ASSERT_EQ(hit.has_value(), row.hit);
        if (!hit)
            continue;
        EXPECT_FLOAT_EQ(hit->depth, row.depth);
        EXPECT_DOUBLE_EQ(hit->centreDistance, row.centreDistance);
        EXPECT_EQ(hit->triangle, row.triangle);
    }
}

TEST(TriangleHierarchyTest, FindsThePixelNearestToTheCentreAcrossAFlatFace)
{
    PickStage stage;
    SampleMesh mesh = soup(2000, 0.5F);
    for (Vector3& position : mesh.positions)
        position = Vector3(10.5F + 9.0F * position.x, 10.5F + 9.0F * position.y, 0.3F);
    OruVisPickVolume const volume = pixelView(stage, 15);
    auto const hit = TriangleHierarchy::build(mesh.positions, mesh.indices).pick(volume);
    ASSERT_TRUE(hit);
    EXPECT_EQ(hit->centreDistance, 0.0);
    EXPECT_EQ(hit->triangle, pickByTryingAll(mesh, volume)->triangle);
}

TEST(TriangleHierarchyTest, SurvivesMatricesThatShowNothing)
{
    PickStage stage;
    SampleMesh const mesh = hostkit::bumpySphere(100);
    auto const hierarchy = TriangleHierarchy::build(mesh.positions, mesh.indices);
    for (float const factor : {0.0F, nan, std::numeric_limits<float>::infinity()}) {
        QMatrix4x4 projection;
        projection *= factor;
        EXPECT_FALSE(hierarchy.pick(stage.volume(QMatrix4x4(), projection, QPoint(32, 24), 9))) << factor;
    }
}

TEST(TriangleHierarchyTest, StaysCompactAndLeavesOutWhatCannotBeDrawn)
{
    SampleMesh mesh = hostkit::bumpySphere(20000);
    mesh.positions.back().y = nan;
    mesh.indices[0] = 4000000000U;
    auto const around = std::count(mesh.indices.begin(), mesh.indices.end(), mesh.positions.size() - 1);
    auto const hierarchy = TriangleHierarchy::build(mesh.positions, mesh.indices);
    EXPECT_EQ(hierarchy.triangleCount() + around + 1, 20000U);
    EXPECT_LE(hierarchy.byteSize(), 12U * 20000U);
}

} // namespace
