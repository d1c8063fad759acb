#include "hosts/mesh/TriangleHierarchy.h"

#include "tests/hosts/RandomViews.h"

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
using Kelvar::Math::Matrix;
using Kelvar::Math::Vector3;
using kelvartest::RandomView;
using kelvartest::soup;
using kelvartest::volumeAt;
using kelvartest::volumeOf;

constexpr float nan = std::numeric_limits<float>::quiet_NaN();

/// Depth, distance from the center and triangle of a hit: the least one is the one to find.
using Found = std::tuple<float, double, uint32_t>;
const Found miss{2.0F, 0.0, 0};

Found pick(const TriangleHierarchy& hierarchy, const OruVisPickVolume& volume)
{
    const auto hit = hierarchy.pick(volume);
    return hit ? Found{hit->depth, hit->centerDistance, hit->triangle} : miss;
}

/// The depth at which a pixel's center sees a triangle: the point a + u (b - a) + v (c - a) that the matrix
/// takes to the center.
std::optional<double> depthAt(double x, double y, const Matrix& toWindow,
                              const std::array<Vector3, 3>& corners)
{
    double f[3][4];
    for (int k = 0; k < 3; ++k) {
        for (int column = 0; column < 4; ++column) {
            f[k][column] = k == 0 ? toWindow(3, column) : 0.0;
            for (int axis = 0; axis < 3; ++axis) {
                f[k][column] +=
                    (corners[k][axis] - (k == 0 ? 0.0 : corners[0][axis])) * toWindow(axis, column);
            }
        }
        f[k][0] -= x * f[k][3];
        f[k][1] -= y * f[k][3];
    }
    const auto area = [&f](int i, int k) { return f[i][0] * f[k][1] - f[k][0] * f[i][1]; };
    const double u = area(2, 0) / area(1, 2);
    const double v = area(0, 1) / area(1, 2);
    const double w = f[0][3] + u * f[1][3] + v * f[2][3];
    const double depth = (f[0][2] + u * f[1][2] + v * f[2][2]) / w;
    const bool seen = u >= 0.0 && v >= 0.0 && u + v <= 1.0 && w > 0.0 && depth >= 0.0 && depth <= 1.0;
    return seen ? std::optional<double>(depth) : std::nullopt;
}

Found pickByTryingAll(const SampleMesh& mesh, const OruVisPickVolume& volume)
{
    Found best = miss;
    for (uint32_t i = 0; i < mesh.indices.size() / 3; ++i) {
        const auto corner = [&](int k) { return mesh.positions[mesh.indices[3 * i + k]]; };
        for (double x = volume.x() + 0.5; x < volume.x() + volume.width(); ++x) {
            for (double y = volume.y() + 0.5; y < volume.y() + volume.height(); ++y) {
                if (const auto depth = depthAt(x, y, volume.toWindow(), {corner(0), corner(1), corner(2)})) {
                    const auto step = static_cast<float>(std::round(*depth * 16777216.0) / 16777216.0);
                    best = std::min(best, Found{step, volume.distanceFromCenter(x, y), i});
                }
            }
        }
    }
    return best;
}

SampleMesh withOutlier(SampleMesh mesh)
{
    mesh.indices.insert(mesh.indices.end(), {0, 1, static_cast<uint32_t>(mesh.positions.size())});
    mesh.positions.emplace_back(1e20F, -2e20F, 3e20F);
    return mesh;
}

struct RandomCase
{
    const char* name;
    SampleMesh mesh;
    RandomView view;
};

TEST(TriangleHierarchyTest, AgreesWithTryingEveryTriangle)
{
    const RandomCase rows[] = {
        {"small triangles", soup(400, 0.3F), {false, 3}},
        {"small triangles, perspective", soup(400, 0.3F), {true, 3}},
        {"one pixel", soup(900, 0.3F), {false, 1}},
        {"one pixel, perspective", soup(900, 0.3F), {true, 1}},
        {"the eye among long triangles", soup(60, 2.5F), {true, 9}},
        {"long triangles", soup(60, 2.5F), {false, 4}},
        {"sphere from within and without", hostkit::bumpySphere(1000), {true, 5}},
        {"sphere, much of it in the window", hostkit::bumpySphere(100), {false, 33}},
        {"far magnified", soup(100, 1.0F), {true, 9, 40.0F}},
        {"huge coordinates", soup(100, 1.0F), {true, 3, 1.0F, 1e15F}},
        {"tiny coordinates", soup(100, 1.0F), {false, 3, 1.0F, 1e-15F}},
        {"far from the origin", soup(100, 1.0F), {false, 9, 1.0F, 1.0F, {3000.0F, -5000.0F, 2000.0F}}},
        {"one corner far away", withOutlier(soup(100, 1.0F)), {true, 3}},
    };
    for (const RandomCase& row : rows) {
        SCOPED_TRACE(row.name);
        SampleMesh mesh = row.mesh;
        for (Vector3& position : mesh.positions) {
            position = position * row.view.scale + row.view.offset;
        }
        const TriangleHierarchy hierarchy = TriangleHierarchy::build(mesh.positions, mesh.indices);
        EXPECT_LE(hierarchy.byteSize(), 12 * mesh.indices.size() / 3 + 24);
        std::mt19937 random(1);
        int hits = 0;
        for (int i = 0; i < 60; ++i) {
            const OruVisPickVolume volume = volumeOf(row.view, random);
            const Found found = pick(hierarchy, volume);
            ASSERT_EQ(found, pickByTryingAll(mesh, volume)) << "view " << i;
            hits += found != miss;
        }
        EXPECT_GE(hits, 8);
    }
}

/// Model x and y are pixels, model z is the window depth; the window lies about pixel (10, 10).
struct ExactCase
{
    const char* name;
    std::vector<Vector3> positions;
    std::vector<uint32_t> indices;
    int pickSize;
    Found expected = miss;
};

/// 21 pixels wide; the depth rises along x.
std::vector<Vector3> ramp(float from, float to)
{
    return {{0, 0, from}, {0, 21, from}, {21, 0, to}, {21, 21, to}};
}

std::vector<Vector3> flat(float z, float left = 0, float right = 40)
{
    return {{left, 0, z}, {right, 0, z}, {(left + right) / 2, 40, z}};
}

std::vector<Vector3> operator+(std::vector<Vector3> a, const std::vector<Vector3>& b)
{
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

using Indices = std::vector<uint32_t>;
const Indices one{0, 1, 2};
const Indices two{3, 4, 5, 0, 1, 2};
const Indices strip{0, 2, 1, 1, 2, 3};

const ExactCase exactCases[] = {
    {"nothing at all", {}, {}, 3},
    {"indices short of a triangle", flat(0.5F), {0, 1}, 3},
    {"two indices too many", flat(0.5F), {0, 1, 2, 0, 1}, 3, {0.5F, 0.0, 0}},
    {"the nearer one", flat(0.25F) + flat(0.75F), two, 3, {0.25F, 0.0, 1}},
    {"back face", flat(0.5F), {0, 2, 1}, 3, {0.5F, 0.0, 0}},
    {"the first of equals", flat(0.25F) + flat(0.75F), {3, 4, 5, 1, 2, 0, 0, 1, 2}, 3, {0.25F, 0.0, 1}},
    {"index beyond the positions", flat(0.5F), {0, 1, 3, 0, 1, 2}, 3, {0.5F, 0.0, 1}},
    {"corner without a place", {{nan, 0, 0}, {40, 0, 0}, {0, 40, 0}}, one, 3},
    {"no area", {{0, 10.5F, 0}, {40, 10.5F, 0}, {20, 10.5F, 0}}, {0, 1, 2, 1, 1, 2}, 3},
    {"on the near plane", flat(0.0F), one, 1, {0.0F, 0.0, 0}},
    {"before the near plane", flat(-0.01F), one, 1},
    {"on the far plane", flat(1.0F), one, 1, {1.0F, 0.0, 0}},
    {"beyond the far plane", flat(1.01F), one, 1},
    {"meets the near plane at the pixel", ramp(-1.0F, 1.0F), strip, 1, {0.0F, 0.0, 0}},
    {"before the near plane at the pixel", ramp(-1.5F, 1.0F), strip, 1},
    {"beyond the far plane at the pixel", ramp(0.0F, 2.5F), strip, 1},
    {"pixel center on an edge", {{10.5F, 0, 0.5F}, {10.5F, 40, 0.5F}, {30, 0, 0.5F}}, one, 1, {0.5F, 0.0, 0}},
    {"pixel center on a corner",
     {{10.5F, 10.5F, 0.5F}, {20, 10, 0.5F}, {20, 20, 0.5F}},
     one,
     1,
     {0.5F, 0.0, 0}},
    {"between the pixel centers", flat(0.5F, 10.6F, 11.4F), one, 9},
    {"off the center of the window", flat(0.5F, 11.25F, 11.75F), one, 5, {0.5F, 1.0, 0}},
    {"nearer beats more central", flat(0.25F, 12.0F, 13.0F) + flat(0.5F), two, 5, {0.25F, 2.0, 1}},
    {"window of no size", flat(0.5F), one, 0},
};

/// The matrices under which the exact cases hold.
OruVisPickVolume pixelView(int pickSize)
{
    QMatrix4x4 projection;
    projection.ortho(0.0F, 64.0F, 0.0F, 64.0F, 0.0F, -1.0F);
    return volumeAt(Matrix(), projection, QPoint(10, 10), pickSize);
}

TEST(TriangleHierarchyTest, FollowsTheRuleOfTheNearestPixel)
{
    for (const ExactCase& row : exactCases) {
        const auto hierarchy = TriangleHierarchy::build(row.positions, row.indices);
        EXPECT_EQ(pick(hierarchy, pixelView(row.pickSize)), row.expected) << row.name;
    }
    SampleMesh mesh = soup(2000, 0.5F);
    for (Vector3& position : mesh.positions) {
        position = Vector3(10.5F + 9.0F * position.x, 10.5F + 9.0F * position.y, 0.3F);
    }
    const Found found = pick(TriangleHierarchy::build(mesh.positions, mesh.indices), pixelView(15));
    EXPECT_EQ(found, pickByTryingAll(mesh, pixelView(15))) << "a flat face of many";
    EXPECT_EQ(std::get<double>(found), 0.0);
    for (const float factor : {0.0F, nan, std::numeric_limits<float>::infinity()}) {
        const auto nothing = volumeAt(Matrix(), QMatrix4x4() * factor, QPoint(32, 32), 9);
        EXPECT_EQ(pick(TriangleHierarchy::build(mesh.positions, mesh.indices), nothing), miss) << factor;
    }
}

} // namespace
