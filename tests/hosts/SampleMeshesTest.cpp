#include "hosts/kit/SampleMeshes.h"

#include <gmock/gmock.h>

#include <set>
#include <utility>

namespace {

TEST(SampleMeshesTest, SpheresAreClosedAndFaceOutwards)
{
    struct Row
    {
        uint32_t asked, given;
    };
    for (Row const row :
         {Row{0, 6}, Row{6, 6}, Row{100, 100}, Row{101, 100}, Row{500, 500}, Row{10000, 10000}}) {
        SCOPED_TRACE(row.asked);
        auto const mesh = hostkit::bumpySphere(row.asked, 2.0F);
        ASSERT_EQ(mesh.indices.size(), 3 * std::size_t{row.given});
        ASSERT_EQ(mesh.normals.size(), mesh.positions.size());
        std::set<std::pair<uint32_t, uint32_t>> edges;
        for (std::size_t i = 0; i < mesh.indices.size(); ++i)
            edges.emplace(mesh.indices[i], mesh.indices[i % 3 == 2 ? i - 2 : i + 1]);
        EXPECT_EQ(edges.size(), mesh.indices.size());
        for (auto const& [from, to] : edges)
            EXPECT_EQ(edges.count({to, from}), 1U);
        for (std::size_t i = 0; i < mesh.positions.size(); ++i) {
            EXPECT_NEAR(mesh.positions[i].length(), 2.0F, 0.1F);
            EXPECT_GT(dot(mesh.positions[i], mesh.normals[i]), 0.0F);
        }
    }
}

} // namespace
