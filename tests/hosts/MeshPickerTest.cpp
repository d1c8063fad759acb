#include "hosts/mesh/MeshPicker.h"

#include "tests/hosts/Models.h"
#include "tests/hosts/RandomViews.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <chrono>
#include <functional>
#include <numeric>
#include <random>
#include <thread>

namespace {

using hostkit::Mesh;
using hostkit::MeshPicker;
using hostkit::SampleMesh;
using hostkit::TriangleHierarchy;
using kelvartest::RandomView;
using kelvartest::soup;

using Hit = TriangleHierarchy::Hit;
using Answer = std::optional<std::tuple<float, double, uint32_t>>;

Answer answer(const std::optional<Hit>& hit)
{
    return hit ? Answer({hit->depth, hit->centerDistance, hit->triangle}) : std::nullopt;
}

bool takes(uint32_t triangle, const std::array<double, 3>& weights)
{
    return triangle % 3 != 0 && weights[0] < 0.7;
}

/// The three kinds of pick.
template <typename Picked>
std::array<Answer, 3> picks(const Picked& from, const OruVisPickVolume& volume)
{
    return {answer(from.pick(volume)), answer(from.pick(volume, takes)), answer(from.pickSides(volume))};
}

SampleMesh inRandomOrder(const SampleMesh& mesh)
{
    std::vector<uint32_t> order(mesh.indices.size() / 3);
    std::iota(order.begin(), order.end(), 0U);
    std::shuffle(order.begin(), order.end(), std::mt19937(7));
    SampleMesh result = mesh;
    for (std::size_t i = 0; i < order.size(); ++i) {
        std::copy_n(mesh.indices.begin() + 3 * order[i], 3, result.indices.begin() + 3 * i);
    }
    return result;
}

/// In planes that many triangles share, so that ties decide; and with slivers.
SampleMesh inPlanes(SampleMesh mesh)
{
    for (auto& position : mesh.positions) {
        position.z = std::round(position.z * 2.0F) / 2.0F;
    }
    for (std::size_t i = 0; i + 2 < mesh.positions.size(); i += 30) {
        mesh.positions[i + 1] = mesh.positions[i] + Kelvar::Math::Vector3(1e-7F, 0.0F, 0.0F);
    }
    return mesh;
}

bool waitUntil(const std::function<bool()>& met)
{
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (!met() && std::chrono::steady_clock::now() < end) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return met();
}

TEST(MeshPicker, AnswersAlikeWithAndWithoutTheHierarchy)
{
    const uint32_t large = MeshPicker::mostAtOnce + 1000;
    const struct
    {
        const char* name;
        SampleMesh mesh;
        RandomView view;
    } rows[] = {
        {"sphere", hostkit::bumpySphere(large), {false, 3}},
        {"sphere, perspective", hostkit::bumpySphere(large), {true, 5}},
        {"sphere in random order", inRandomOrder(hostkit::bumpySphere(large)), {true, 5}},
        {"small triangles", soup(large, 0.05F), {false, 3}},
        {"the eye among long triangles", soup(large, 1.0F), {true, 3}},
        {"ties", inPlanes(soup(large, 0.3F)), {false, 9}},
        {"ties, perspective", inPlanes(soup(large, 0.3F)), {true, 9}},
        {"far from the origin", soup(large, 0.3F), {false, 5, 1.0F, 1.0F, {3000.0F, -5000.0F, 2000.0F}}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        hostkit::MeshSource source = kelvartest::sourceOf(row.mesh);
        for (auto& position : source.positions) {
            position += row.view.offset;
        }
        const auto mesh = kelvartest::built(source);
        const auto hierarchy = TriangleHierarchy::build(mesh->positions, mesh->indices);
        std::mt19937 random(1);
        std::vector<OruVisPickVolume> volumes;
        std::vector<std::array<Answer, 3>> expected;
        for (int i = 0; i < 40; ++i) {
            volumes.push_back(volumeOf(row.view, random));
            expected.push_back(picks(hierarchy, volumes.back()));
        }
        int early = 0;
        int hits = 0;
        for (std::size_t i = 0; i < volumes.size(); ++i) {
            ASSERT_EQ(picks(mesh->picker, volumes[i]), expected[i]) << "early, view " << i;
            early += mesh->picker.ready() ? 0 : 1;
            hits += expected[i][0] ? 1 : 0;
        }
        EXPECT_GT(early, 0);
        EXPECT_GE(hits, 4);
        ASSERT_TRUE(waitUntil([&] { return mesh->picker.ready(); }));
        for (std::size_t i = 0; i < volumes.size(); ++i) {
            ASSERT_EQ(picks(mesh->picker, volumes[i]), expected[i]) << "later, view " << i;
        }
    }
}

TEST(MeshPicker, BuildsNothingBeforeItIsWanted)
{
    const auto small = kelvartest::built(kelvartest::cubeSource());
    const auto large = kelvartest::built(kelvartest::sourceOf(hostkit::bumpySphere(20000)));
    const auto untouched = kelvartest::built(kelvartest::sourceOf(hostkit::bumpySphere(20000)));
    small->picker.prepare();
    EXPECT_FALSE(small->picker.ready()) << "the first pick is soon enough";
    std::mt19937 random(1);
    small->picker.pick(kelvartest::volumeOf({false, 3}, random));
    EXPECT_TRUE(small->picker.ready());
    large->picker.prepare();
    EXPECT_TRUE(waitUntil([&] { return large->picker.ready(); }));
    EXPECT_FALSE(untouched->picker.ready());
}

/// In each state that the background thread can be in, with a mesh that nobody ends before.
TEST(MeshPickerDeathTest, LetsTheProcessEnd)
{
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    for (const int wait : {0, 110, 130}) {
        EXPECT_EXIT(
            {
                static const auto mesh =
                    kelvartest::built(kelvartest::sourceOf(hostkit::bumpySphere(1000000)));
                mesh->picker.prepare();
                std::this_thread::sleep_for(std::chrono::milliseconds(wait));
                std::exit(0);
            },
            testing::ExitedWithCode(0), "");
    }
}

} // namespace
