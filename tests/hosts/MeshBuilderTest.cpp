#include "hosts/kit/MeshBuilder.h"

#include "hosts/kit/SampleMeshes.h"
#include "tests/hosts/Models.h"

#include <gmock/gmock.h>

#include <cmath>
#include <functional>
#include <limits>
#include <set>

using hostkit::MeshSource;
using Kelvar::Math::Vector3;
using kelvartest::built;
using kelvartest::cubeSource;

namespace {

/// Appends triangles of `other` to `source`.
void append(MeshSource& source, const MeshSource& other)
{
    for (const uint32_t index : other.indices) {
        source.indices.push_back(static_cast<uint32_t>(source.positions.size()));
        source.positions.push_back(other.positions[index]);
    }
}

/// A soup with corners of its own for each triangle, as STL has it.
MeshSource soup(const hostkit::SampleMesh& mesh)
{
    MeshSource source;
    for (const uint32_t index : mesh.indices) {
        source.indices.push_back(static_cast<uint32_t>(source.positions.size()));
        source.positions.push_back(mesh.positions[index]);
    }
    return source;
}

} // namespace

TEST(MeshBuilder, TellsClosedMeshesFromOpenOnes)
{
    struct Row
    {
        const char* name;
        std::function<void(MeshSource&)> change;
        bool closed;
    };
    const Row rows[] = {
        {"a cube", [](MeshSource&) {}, true},
        {"a triangle missing", [](MeshSource& s) { s.indices.resize(33); }, false},
        {"a triangle turned over", [](MeshSource& s) { std::swap(s.indices[0], s.indices[1]); }, false},
        {"inside out",
         [](MeshSource& s) {
             for (std::size_t i = 0; i < s.indices.size(); i += 3) {
                 std::swap(s.indices[i], s.indices[i + 1]);
             }
         },
         false},
        {"a triangle twice",
         [](MeshSource& s) {
             s.indices.insert(s.indices.end(), {s.indices[0], s.indices[1], s.indices[2]});
         },
         false},
        {"a triangle without area besides",
         [](MeshSource& s) {
             s.indices.insert(s.indices.end(), {0u, 1u, 1u});
         },
         true},
        {"two cubes apart", [](MeshSource& s) { append(s, cubeSource(Vector3(5, 0, 0))); }, true},
        {"two cubes that share an edge", [](MeshSource& s) { append(s, cubeSource(Vector3(2, 2, 0))); },
         false},
        {"one corner a hair off", [](MeshSource& s) { s.positions[4].x = std::nextafter(1.0f, 2.0f); },
         false},
        {"zeros of both signs",
         [](MeshSource& s) {
             for (Vector3& p : s.positions) {
                 p = p + Vector3(1, 1, 1);
             }
             s.positions[0].x = -0.0f;
         },
         true},
    };
    for (const Row& row : rows) {
        MeshSource source = cubeSource();
        row.change(source);
        EXPECT_EQ(built(source)->closed, row.closed) << row.name;
    }
}

TEST(MeshBuilder, KeepsCreasesSharpAndRoundsTheRest)
{
    const auto cube = built(cubeSource());
    EXPECT_EQ(cube->positions.size(), 24u);
    for (std::size_t i = 0; i < cube->indices.size(); ++i) {
        const Vector3* corner[3];
        for (std::size_t k = 0; k < 3; ++k) {
            corner[k] = &cube->positions[cube->indices[i - i % 3 + k]];
        }
        const Vector3 flat = cross(*corner[1] - *corner[0], *corner[2] - *corner[0]).normalized();
        EXPECT_EQ(cube->normals[cube->indices[i]], flat) << "corner " << i;
    }

    const hostkit::SampleMesh sphere = hostkit::bumpySphere(10000);
    const auto round = built(soup(sphere));
    EXPECT_EQ(round->positions.size(), sphere.positions.size());
    EXPECT_EQ(round->triangleCount(), sphere.indices.size() / 3);
    EXPECT_TRUE(round->closed);
    for (std::size_t i = 0; i < round->positions.size(); ++i) {
        EXPECT_NEAR(round->normals[i].length(), 1.0f, 1e-4f);
        EXPECT_GT(dot(round->normals[i], round->positions[i].normalized()), 0.5f) << "vertex " << i;
    }
}

TEST(MeshBuilder, KeepsTheTrianglesInOrderAndTheirCornersInPlace)
{
    const MeshSource source = soup(hostkit::bumpySphere(5000));
    const auto mesh = built(source);
    ASSERT_EQ(mesh->indices.size(), source.indices.size());
    for (std::size_t i = 0; i < source.indices.size(); ++i) {
        ASSERT_EQ(mesh->positions[mesh->indices[i]], source.positions[source.indices[i]]) << "corner " << i;
    }
}

TEST(MeshBuilder, SplitsVerticesByGivenNormalsAndColours)
{
    MeshSource source = cubeSource();
    source.normals.assign(36, Vector3(0, 0, 3));
    EXPECT_EQ(built(source)->positions.size(), 8u) << "all alike";
    EXPECT_EQ(built(source)->normals[0], Vector3(0, 0, 1)) << "brought to length 1";

    source.colours.assign(36, 0xFF0000FFu);
    source.colours[0] = 0xFFFF0000u;
    EXPECT_EQ(built(source)->positions.size(), 9u) << "one corner of another colour";

    source.normals[7] = Vector3();
    EXPECT_EQ(built(source)->normals[0].length(), 1.0f) << "broken normals are worked out anew";
    EXPECT_EQ(built(source)->positions.size(), 25u);
}

TEST(MeshBuilder, RefusesWhatCannotBeDrawn)
{
    const float bad[] = {std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity()};
    for (const float value : bad) {
        MeshSource source = cubeSource();
        source.positions[17].y = value;
        try {
            built(source);
            ADD_FAILURE() << "accepted " << value;
        } catch (const std::runtime_error& error) {
            EXPECT_THAT(error.what(), testing::HasSubstr("vertex 17"));
        }
    }
    MeshSource source = cubeSource();
    source.indices[5] = 36;
    EXPECT_THROW(built(source), std::runtime_error);
    source.indices.assign(3, 7u);
    EXPECT_EQ(built(source), nullptr) << "nothing but a point";
}

TEST(MeshBuilder, CopesWithThousandsOfTrianglesInOnePlace)
{
    MeshSource fan;
    const int count = 200000;
    fan.positions.emplace_back(0.0f, 0.0f, 1.0f);
    for (int i = 0; i < count; ++i) {
        const double angle = 2.0 * 3.14159265358979 * i / count;
        fan.positions.emplace_back(static_cast<float>(std::cos(angle)), static_cast<float>(std::sin(angle)),
                                   0.0f);
        const uint32_t next = static_cast<uint32_t>((i + 1) % count);
        fan.indices.insert(fan.indices.end(), {0u, static_cast<uint32_t>(i) + 1u, next + 1u});
    }
    const auto mesh = built(fan);
    EXPECT_FALSE(mesh->closed);
    EXPECT_NEAR(mesh->normals[0].z, 1.0f, 1e-3f);
}
