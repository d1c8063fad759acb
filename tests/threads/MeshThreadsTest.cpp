// Meshes that several threads ask at the same time. The thread sanitizer (preset tsan) sees what they share.

#include "tests/hosts/Models.h"
#include "tests/hosts/RandomViews.h"

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <future>
#include <random>
#include <set>
#include <thread>
#include <vector>

namespace {

/// What `ask` answers to as many threads that start together.
template <typename Answer>
std::vector<Answer> askTogether(std::size_t count, const std::function<Answer()>& ask)
{
    std::promise<void> start;
    const std::shared_future<void> started = start.get_future().share();
    std::vector<std::future<Answer>> threads;
    for (std::size_t i = 0; i < count; ++i) {
        threads.push_back(std::async(std::launch::async, [&] {
            started.wait();
            return ask();
        }));
    }
    start.set_value();
    std::vector<Answer> answers;
    for (std::future<Answer>& thread : threads) {
        answers.push_back(thread.get());
    }
    return answers;
}

} // namespace

TEST(MeshThreads, FindEdgesOnce)
{
    hostkit::MeshSource source = kelvartest::sourceOf(hostkit::bumpySphere(20000));
    source.indices.resize(source.indices.size() / 2);
    const auto alone = kelvartest::built(source);
    const auto mesh = kelvartest::built(source);
    const auto answers = askTogether<const hostkit::MeshEdges*>(4, [&] { return &mesh->edges(); });
    EXPECT_EQ(std::set<const hostkit::MeshEdges*>(answers.begin(), answers.end()).size(), 1u);
    EXPECT_GT(answers[0]->angles.size(), 0u);
    EXPECT_EQ(answers[0]->indices, alone->edges().indices);
    EXPECT_EQ(answers[0]->angles, alone->edges().angles);
}

TEST(MeshThreads, PickWhileTheHierarchyIsBuilt)
{
    for (const uint32_t triangles : {2000U, 100000U}) {
        const auto mesh = kelvartest::built(kelvartest::sourceOf(hostkit::bumpySphere(triangles)));
        const auto expected = hostkit::TriangleHierarchy::build(mesh->positions, mesh->indices);
        mesh->picker.prepare();
        const auto wrong = askTogether<int>(4, [&] {
            int count = 0;
            std::mt19937 random(1);
            const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(30);
            bool ready = false;
            for (int after = 0; after < 20 && std::chrono::steady_clock::now() < end; after += ready) {
                const OruVisPickVolume volume = kelvartest::volumeOf({true, 3}, random);
                const auto own = mesh->picker.pick(volume);
                const auto other = expected.pick(volume);
                count += own.has_value() != other.has_value() || (own && own->triangle != other->triangle);
                ready = mesh->picker.ready();
            }
            return ready ? count : -1;
        });
        EXPECT_EQ(wrong, std::vector<int>(4, 0)) << triangles;
    }
}

TEST(MeshThreads, EndWhileTheHierarchyIsBuilt)
{
    for (int wait = 0; wait <= 160; wait += 20) {
        const auto mesh = kelvartest::built(kelvartest::sourceOf(hostkit::bumpySphere(300000)));
        mesh->picker.prepare();
        std::this_thread::sleep_for(std::chrono::milliseconds(wait));
    }
}
