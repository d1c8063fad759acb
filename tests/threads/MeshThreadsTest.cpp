// Meshes that several threads ask at the same time. The thread sanitizer (preset tsan) sees what they share.

#include "tests/hosts/Models.h"

#include <gtest/gtest.h>

#include <functional>
#include <future>
#include <set>
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
