#include "hosts/mesh/MeshBuilder.h"

#include "tests/hosts/Models.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <iterator>
#include <limits>

using hostkit::MeshSource;
using Kelvar::Math::Vector3;
using kelvartest::built;
using kelvartest::cubeSource;
using kelvartest::sourceOf;

namespace {

/// The triangles of `other`, each with corners of its own, as STL has it, behind those of `source`.
template <typename Indexed>
MeshSource append(const Indexed& other, MeshSource source = MeshSource())
{
    for (const uint32_t index : other.indices) {
        source.indices.push_back(static_cast<uint32_t>(source.positions.size()));
        source.positions.push_back(other.positions[index]);
    }
    return source;
}

MeshSource addTriangle(MeshSource source, const std::array<uint32_t, 3>& corners)
{
    source.indices.insert(source.indices.end(), corners.begin(), corners.end());
    return source;
}

MeshSource turned(MeshSource source, std::size_t triangles)
{
    for (std::size_t i = 0; i < triangles; ++i) {
        std::swap(source.indices[3 * i], source.indices[3 * i + 1]);
    }
    return source;
}

MeshSource withX(MeshSource source, std::size_t corner, float x)
{
    source.positions[corner].x = x;
    return source;
}

/// The mantle of a prism about the z axis, with normals that make it round.
MeshSource ring(uint32_t sides, float height)
{
    MeshSource source;
    for (uint32_t i = 0; i < sides; ++i) {
        const float angle = 6.2831853f * static_cast<float>(i) / static_cast<float>(sides);
        const Vector3 out(std::cos(angle), std::sin(angle), 0.0f);
        source.positions.insert(source.positions.end(), {out, out + Vector3(0, 0, height)});
        source.normals.insert(source.normals.end(), {out, out});
        const uint32_t next = 2 * ((i + 1) % sides);
        source = addTriangle(addTriangle(source, {2 * i, next, next + 1}), {2 * i, next + 1, 2 * i + 1});
    }
    return source;
}

} // namespace

TEST(MeshBuilder, TellsClosedMeshesFromOpenOnes)
{
    const MeshSource cube = cubeSource();
    const MeshSource atZero = cubeSource(Vector3(1, 1, 1));
    MeshSource holed = cube;
    holed.indices.resize(33);
    const struct
    {
        const char* name;
        MeshSource source;
        bool closed;
    } rows[] = {
        {"a cube", cube, true},
        {"a triangle missing", holed, false},
        {"a triangle turned over", turned(cube, 1), false},
        {"inside out", turned(cube, 12), false},
        {"a triangle twice", addTriangle(cube, {0, 1, 2}), false},
        {"a triangle without area besides", addTriangle(cube, {0, 1, 1}), true},
        {"two cubes apart", append(cubeSource(Vector3(5, 0, 0)), cube), true},
        {"two cubes that share an edge", append(cubeSource(Vector3(2, 2, 0)), cube), false},
        {"one corner a hair off", withX(cube, 4, std::nextafter(1.0f, 2.0f)), false},
        {"zeros of both signs", withX(atZero, 0, -0.0f), true},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(built(row.source)->closed, row.closed) << row.name;
    }
}

TEST(MeshBuilder, FindsWhereASurfaceEndsOrBends)
{
    const MeshSource cube = cubeSource();
    MeshSource holed = cube;
    holed.indices.resize(33);
    MeshSource doubled = cube;
    for (std::size_t i = 0; i < 36; i += 3) {
        doubled = addTriangle(doubled, {cube.indices[i], cube.indices[i + 2], cube.indices[i + 1]});
    }
    const MeshSource round = ring(8, 1.0f);
    MeshSource faceted = round;
    faceted.normals.clear();
    MeshSource coarse = ring(5, 1.0f);
    // A square and, beyond its edge from (0, 0) to (0, 4), three triangles whose vertices it has not.
    MeshSource seam;
    seam.positions = {{0, 0, 0}, {4, 0, 0}, {4, 4, 0}, {0, 4, 0}, {0, 1, 0}, {0, 3, 0}, {-4, 2, 0}};
    seam.indices = {0, 1, 2, 0, 2, 3, 0, 4, 6, 4, 5, 6, 5, 3, 6};
    MeshSource bent = seam;
    bent.positions[6] = {0, 2, 4};
    const struct
    {
        const char* name;
        MeshSource source;
        float angle;
        std::size_t edges;
    } rows[] = {
        {"a cube", cube, 30, 12},
        {"a cube, just met", cube, 90, 12},
        {"a cube, beyond", cube, 90.5f, 0},
        {"a triangle missing", holed, 30, 13},
        {"the hole alone", holed, 180, 3},
        {"a triangle turned over", turned(cube, 1), 30, 12},
        {"every triangle also from behind", doubled, 30, 12},
        {"a fine sphere", sourceOf(hostkit::bumpySphere(20000)), 30, 0},
        {"an open ring with round normals", round, 30, 16},
        {"without", faceted, 30, 24},
        {"too coarse to be meant round", coarse, 30, 15},
        {"a flat seam", seam, 30, 5},
        {"a bent seam", bent, 89, 9},
    };
    for (const auto& row : rows) {
        const auto mesh = built(row.source);
        EXPECT_EQ(mesh->edges().countFrom(row.angle), row.edges) << row.name;
        EXPECT_EQ(mesh->edges().indices.size(), 2 * mesh->edges().angles.size()) << row.name;
    }
}

TEST(MeshBuilder, KeepsCreasesSharpAndJoinsTheRest)
{
    const auto cube = built(cubeSource());
    EXPECT_EQ(cube->positions.size(), 24u);
    for (std::size_t i = 0; i < cube->indices.size(); ++i) {
        const auto corner = [&](std::size_t k) { return cube->positions[cube->indices[i - i % 3 + k]]; };
        const Vector3 flat = cross(corner(1) - corner(0), corner(2) - corner(0)).normalized();
        EXPECT_EQ(cube->normals[cube->indices[i]], flat) << "corner " << i;
    }
    const auto round = built(append(hostkit::bumpySphere(10000)));
    EXPECT_EQ(round->positions.size(), 5002u) << "no creases, so one vertex a place";
}

TEST(MeshBuilder, KeepsTheArraysOfASourceWithNothingToMend)
{
    // The second one a hair beside the first but for one edge, which belongs to four triangles then.
    const auto twoWithOneEdge = [](MeshSource& source) {
        const MeshSource first = source;
        const auto vertices = static_cast<uint32_t>(first.positions.size());
        for (uint32_t vertex = 0; vertex < vertices; ++vertex) {
            const bool shared = vertex == first.indices[0] || vertex == first.indices[1];
            const Vector3 way(shared ? 0.0f : 1e-3f, 0.0f, 0.0f);
            source.positions.push_back(first.positions[vertex] + way);
            source.normals.push_back(first.normals[vertex]);
        }
        for (const uint32_t vertex : first.indices) {
            source.indices.push_back(vertex + vertices);
        }
    };
    const struct
    {
        const char* name;
        std::function<void(MeshSource&)> change;
        bool kept;
        bool closed;
        std::size_t vertices = 52;
        std::size_t triangles = 100;
    } rows[] = {
        {"clean", [](MeshSource&) {}, true, true},
        {"a normal of another length", [](MeshSource& s) { s.normals[3] *= 5.0f; }, true, true},
        {"colors", [](MeshSource& s) { s.colors.assign(52, 0xFF00FF00u); }, true, true},
        {"a triangle missing", [](MeshSource& s) { s.indices.resize(297); }, true, false, 52, 99},
        {"a triangle twice",
         [](MeshSource& s) {
             s = addTriangle(s, {0, 1, 2});
         },
         true, false, 52, 101},
        {"every triangle twice",
         [](MeshSource& s) {
             const std::vector<uint32_t> once = s.indices;
             s.indices.insert(s.indices.end(), once.begin(), once.end());
         },
         true, false, 52, 200},
        {"inside out",
         [](MeshSource& s) {
             s = turned(s, 100);
             for (Vector3& normal : s.normals) {
                 normal = -normal;
             }
         },
         true, false},
        {"a triangle turned over", [](MeshSource& s) { s = turned(s, 1); }, false, false, 55},
        {"a normal missing", [](MeshSource& s) { s.normals[7] = Vector3(); }, false, true, 169},
        {"no normals", [](MeshSource& s) { s.normals.clear(); }, false, true, 169},
        {"a vertex used twice",
         [](MeshSource& s) {
             s = addTriangle(s, {3, 4, 4});
         },
         false, true},
        {"an index left over", [](MeshSource& s) { s.indices.push_back(5); }, false, true},
        {"a vertex unused",
         [](MeshSource& s) {
             s.positions.emplace_back(9.0f, 9.0f, 9.0f);
             s.normals.push_back(Vector3::X);
         },
         false, true},
        {"a corner of its own for one triangle",
         [](MeshSource& s) {
             s.positions.push_back(s.positions[s.indices[0]]);
             s.normals.push_back(s.normals[s.indices[0]]);
             s.indices[0] = 52;
         },
         false, true},
        {"two that share an edge", twoWithOneEdge, false, false, 102, 200},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        MeshSource source = sourceOf(hostkit::bumpySphere(100));
        row.change(source);
        const MeshSource given = source;
        const void* const arrays[] = {source.positions.data(), source.normals.data(), source.indices.data()};
        const auto mesh = built(std::move(source));
        const void* const own[] = {mesh->positions.data(), mesh->normals.data(), mesh->indices.data()};
        EXPECT_EQ(std::equal(std::begin(own), std::end(own), arrays), row.kept);
        EXPECT_EQ(mesh->closed, row.closed);
        EXPECT_EQ(mesh->positions.size(), row.vertices);
        ASSERT_EQ(mesh->triangleCount(), row.triangles);
        EXPECT_EQ(mesh->colors, given.colors);
        Kelvar::Math::BoundingBox box;
        for (std::size_t at = 0; at < mesh->indices.size(); ++at) {
            const uint32_t vertex = mesh->indices[at];
            EXPECT_EQ(mesh->positions[vertex], given.positions[given.indices[at]]) << "corner " << at;
            EXPECT_NEAR(mesh->normals[vertex].length(), 1.0f, 1e-6f) << "corner " << at;
            const auto at0 = [&](std::size_t k) { return mesh->positions[mesh->indices[at - at % 3 + k]]; };
            EXPECT_GT(dot(cross(at0(1) - at0(0), at0(2) - at0(0)), mesh->normals[vertex]), 0.0f);
            box.add(mesh->positions[vertex]);
        }
        EXPECT_EQ(mesh->bounds, box);
        EXPECT_EQ(mesh->runs, std::vector<Kelvar::Math::BoundingBox>{box});
    }
}

TEST(MeshBuilder, GivesTheSameByBothRoads)
{
    const MeshSource clean = sourceOf(hostkit::bumpySphere(60000));
    MeshSource unused = clean;
    unused.positions.emplace_back(9.0f, 9.0f, 9.0f);
    unused.normals.push_back(Vector3::X);
    const auto kept = built(clean);
    const auto anew = built(unused);
    EXPECT_TRUE(kept->closed && anew->closed);
    EXPECT_EQ(kept->positions, anew->positions);
    EXPECT_EQ(kept->normals, anew->normals);
    EXPECT_EQ(kept->indices, anew->indices);
    EXPECT_EQ(kept->bounds, anew->bounds);
    EXPECT_EQ(kept->runs, anew->runs);
    EXPECT_EQ(kept->edges().indices, anew->edges().indices);
    EXPECT_EQ(kept->edges().angles, anew->edges().angles);
}

TEST(MeshBuilder, SplitsVerticesByWhatIsGivenForThem)
{
    MeshSource source = cubeSource();
    source.normals = source.positions;
    EXPECT_EQ(built(source)->positions.size(), 8u) << "one a place";
    EXPECT_FLOAT_EQ(built(source)->normals[0].length(), 1.0f) << "brought to length 1";

    source.colors.assign(36, 0xFF0000FFu);
    source.colors[0] = 0xFFFF0000u;
    EXPECT_EQ(built(source)->positions.size(), 9u) << "one corner of another color";

    source.texturePoints.resize(36);
    source.texturePoints[1] = {1, 0};
    EXPECT_EQ(built(source)->texturePoints.size(), 0u) << "no texture";
    source.material.texture = std::make_shared<hostkit::Texture>();
    EXPECT_EQ(built(source)->positions.size(), 10u);
    EXPECT_EQ(built(source)->texturePoints.size(), 10u);
    source.texturePoints[1].s = std::numeric_limits<float>::quiet_NaN();
    EXPECT_EQ(built(source)->positions.size(), 9u) << "not finite, so like the others";
    source.texturePoints.resize(35);
    EXPECT_EQ(built(source)->texturePoints.size(), 0u) << "one too few";

    source.normals[7] = Vector3();
    EXPECT_EQ(built(source)->normals[0].length(), 1.0f) << "broken normals are worked out anew";
    EXPECT_EQ(built(source)->positions.size(), 25u);
}

TEST(MeshBuilder, RefusesWhatCannotBeDrawn)
{
    EXPECT_THROW(built(withX(cubeSource(), 17, std::numeric_limits<float>::infinity())), std::runtime_error);
    EXPECT_THROW(built(addTriangle(cubeSource(), {0, 1, 36})), std::runtime_error);
    MeshSource source = cubeSource();
    source.indices.assign(3, 7u);
    EXPECT_EQ(built(source), nullptr) << "nothing but a point";
}

TEST(MeshBuilder, CopesWithThousandsOfTrianglesInOnePlace)
{
    MeshSource fan;
    fan.positions.emplace_back(0.0f, 0.0f, 1.0f);
    const uint32_t count = 200000;
    for (uint32_t i = 0; i < count; ++i) {
        const float angle = 6.2831853f * static_cast<float>(i) / count;
        fan.positions.emplace_back(std::cos(angle), std::sin(angle), 0.0f);
        fan = addTriangle(std::move(fan), {0, i + 1, (i + 1) % count + 1});
    }
    const auto mesh = built(fan);
    EXPECT_FALSE(mesh->closed);
    EXPECT_NEAR(mesh->normals[0].z, 1.0f, 1e-3f);
}

TEST(MeshBuilder, ClosesAndShadesSampleSpheresOfTheGreatestSizeThatFits)
{
    const std::pair<uint32_t, uint32_t> rows[] = {{0, 6}, {6, 6}, {100, 100}, {101, 100}, {10000, 10000}};
    for (const auto& [asked, given] : rows) {
        SCOPED_TRACE(asked);
        const hostkit::SampleMesh sample = hostkit::bumpySphere(asked, 2.0f);
        const auto mesh = built(append(sample));
        EXPECT_TRUE(mesh->closed);
        EXPECT_EQ(mesh->triangleCount(), given);
        for (std::size_t i = 0; i < sample.positions.size(); ++i) {
            EXPECT_NEAR(sample.positions[i].length(), 2.0f, 0.1f);
            EXPECT_GT(dot(sample.positions[i], sample.normals.at(i)), 0.0f);
        }
        for (std::size_t i = 0; i < mesh->positions.size(); ++i) {
            EXPECT_NEAR(mesh->normals[i].length(), 1.0f, 1e-4f);
            EXPECT_GT(dot(mesh->normals[i], mesh->positions[i].normalized()), 0.4f) << "vertex " << i;
        }
    }
}
