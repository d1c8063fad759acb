#include "hosts/mesh/ShapeBuilder.h"

#include "hosts/mesh/Model.h"
#include "tests/hosts/Models.h"

#include <gmock/gmock.h>

#include <limits>
#include <random>
#include <set>
#include <tuple>

using namespace hostkit;
using namespace kelvartest;
using Kelvar::Math::Vector3;

namespace {

/// Place, normal and color of a vertex.
using Vertex = std::tuple<float, float, float, float, float, float, uint32_t>;

template <typename Arrays>
Vertex vertexOf(const Arrays& arrays, std::size_t i)
{
    const Vector3& place = arrays.positions.at(i);
    const Vector3& normal = arrays.normals.at(i);
    return {place.x, place.y, place.z, normal.x, normal.y, normal.z, arrays.colors.at(i)};
}

/// A thousand vertices on a coarse grid, so that some share a place.
MeshSource grid(Primitive primitive)
{
    std::mt19937 random(7);
    const auto pick = [&random] { return static_cast<float>(random() % 7); };
    MeshSource source;
    source.name = QStringLiteral("grid");
    source.primitive = primitive;
    for (uint32_t i = 0; i < 1000; ++i) {
        source.positions.emplace_back(pick(), pick(), pick());
        source.normals.push_back(i % 2 == 0 ? Vector3(0, 0, 1) : Vector3(1, 0, 0));
        source.colors.push_back(i);
        source.indices.push_back(static_cast<uint32_t>(random() % 900)); // not all, and some often
    }
    return source;
}

TEST(ShapeBuilder, KeepsEachPointWithWhatBelongsToIt)
{
    const MeshSource source = grid(Primitive::Points);
    const auto points = builtAs<PointSet>(source);
    std::multiset<Vertex> expected;
    std::multiset<Vertex> kept;
    for (std::size_t i = 0; i < source.indices.size(); ++i) {
        expected.insert(vertexOf(source, source.indices[i]));
        kept.insert(vertexOf(*points, i));
    }
    EXPECT_EQ(kept, expected);
    EXPECT_EQ(points->pointCount(), 1000u);
    EXPECT_EQ(points->bounds.max(), Vector3(6, 6, 6));
    EXPECT_LE(points->hierarchy.tree().byteSize(), 6 * 1000 + 24u);
}

TEST(ShapeBuilder, KeepsSegmentsThatHaveALengthAndTheVerticesOfThese)
{
    MeshSource source = grid(Primitive::Lines);
    source.indices.push_back(1); // half a segment
    std::multiset<std::pair<Vertex, Vertex>> expected;
    std::set<uint32_t> used;
    for (std::size_t i = 0; i + 1 < source.indices.size(); i += 2) {
        const uint32_t from = source.indices[i];
        const uint32_t to = source.indices[i + 1];
        if (source.positions[from] != source.positions[to]) {
            expected.emplace(vertexOf(source, from), vertexOf(source, to));
            used.insert({from, to});
        }
    }
    ASSERT_LT(expected.size(), 500u);
    const auto lines = builtAs<LineSet>(source);
    std::multiset<std::pair<Vertex, Vertex>> kept;
    for (std::size_t i = 0; i < lines->indices.size(); i += 2) {
        kept.emplace(vertexOf(*lines, lines->indices[i]), vertexOf(*lines, lines->indices[i + 1]));
    }
    EXPECT_EQ(kept, expected);
    EXPECT_EQ(lines->positions.size(), used.size());
}

TEST(ShapeBuilder, RefusesWhatCannotBeDrawn)
{
    for (const Primitive primitive : {Primitive::Triangles, Primitive::Lines, Primitive::Points}) {
        SCOPED_TRACE(static_cast<int>(primitive));
        MeshSource broken = grid(primitive);
        broken.positions[999].y = std::numeric_limits<float>::quiet_NaN();
        EXPECT_THROW(builtAs<Mesh>(broken), std::runtime_error);
        MeshSource outside = grid(primitive);
        outside.indices[999] = 1000;
        EXPECT_THROW(builtAs<Mesh>(outside), std::runtime_error);
        MeshSource empty = grid(primitive);
        empty.indices.clear();
        EXPECT_FALSE(ShapeBuilder::build(empty, [](float) {}));
    }
    MeshSource inOnePlace = grid(Primitive::Lines);
    inOnePlace.indices = {3, 3};
    EXPECT_FALSE(ShapeBuilder::build(inOnePlace, [](float) {}));
    MeshSource dark = grid(Primitive::Points);
    dark.normals[5] = Vector3();
    EXPECT_EQ(builtAs<PointSet>(dark)->normals.size(), 0u);
}

TEST(ShapeBuilder, ModelsCountWhatTheyShowByItsKind)
{
    Model model;
    model.children.emplace_back().parts.emplace_back(builtAs<PointSet>(grid(Primitive::Points)));
    model.children[0].parts.emplace_back(built(cubeSource()));
    model.children[0].parts.emplace_back(model.children[0].parts[0]);
    MeshSource cross = grid(Primitive::Lines);
    cross.positions = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}};
    cross.normals.clear();
    cross.colors.clear();
    cross.indices = {0, 1, 2, 0};
    model.parts.emplace_back(builtAs<LineSet>(cross));
    EXPECT_EQ(model.triangleCount(), 12u);
    EXPECT_EQ(model.segmentCount(), 2u);
    EXPECT_EQ(model.pointCount(), 2000u);
}

} // namespace
