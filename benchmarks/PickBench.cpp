// Picks, beyond the clear and the finish that every pick contains: what lies under 21 pixels of five scenes.

#include "Scene/controller/OruSceneController.h"
#include "hosts/host/OffscreenView.h"
#include "hosts/mesh/PointSetBuilder.h"
#include "benchmarks/Bench.h"
#include "benchmarks/BenchScenes.h"
#include "benchmarks/Pointing.h"

#include <algorithm>
#include <array>
#include <memory>
#include <numeric>
#include <random>

namespace {

using bench::Cost;
using hostkit::HostScene;
using hostkit::Model;

constexpr int rounds = 40;
constexpr int loadings = 7;
const QString millisecond = QStringLiteral("ms");

/// The whole road of a hit test, by a controller that has nothing in its hand yet.
void pick(HostScene& host)
{
    OruSceneController controller;
    controller.OnMouseDown(host.scene().render, host.context());
}

void measurePicks(HostScene& host, const QString& scene)
{
    std::array<bench::Costs, 3> all;
    for (int number = 0; number < bench::pixelCount; ++number) {
        bench::movePointer(host, bench::pixel(number));
        const auto costs = bench::interleave(rounds, {bench::clearAndFinish, [&] { pick(host); },
                                                      [&] {
                                                          bench::movePointer(host, bench::pixel(number));
                                                          host.send(&OruSceneEventHandler::mouseMove);
                                                      }});
        for (std::size_t i = 0; i < all.size(); ++i) {
            bench::append(all[i], costs[i]);
        }
    }
    const QString aim = QStringLiteral("<= 0.05");
    bench::report(scene + QStringLiteral(": clear and finish alone"), bench::median(all[0], &Cost::wall),
                  millisecond);
    bench::reportBeyondClear(scene + QStringLiteral(": pick"), all[1], all[0], aim);
    bench::reportBeyondClear(scene + QStringLiteral(": mouseMove with hover"), all[2], all[0], aim);
}

/// What the first hover after the first frame takes, of a scene and meshes that are made anew each time.
void measureFirstPick(const QString& scene, const QString& engineFile)
{
    bench::Costs clears;
    bench::Costs picks;
    for (int loading = 0; loading < loadings; ++loading) {
        HostScene host{QString(), QString(), QString()};
        bench::show(host, bench::buildModel(bench::makeScene(scene, engineFile).arrays));
        bench::movePointer(host, bench::pixel(bench::pixelCount / 2));
        // The first clear also tidies up after the frame.
        bench::clearAndFinish();
        clears.push_back(bench::measure(bench::clearAndFinish));
        picks.push_back(bench::measure([&] { pick(host); }));
    }
    bench::reportBeyondClear(scene + QStringLiteral(": first pick after loading"), picks, clears,
                             QStringLiteral("<= 5"));
}

void measureHierarchy(const Model& model)
{
    const hostkit::Mesh& mesh = *model.parts.front().as<hostkit::Mesh>();
    hostkit::TriangleHierarchy hierarchy;
    const auto costs = bench::interleave(
        5, {[&] { hierarchy = hostkit::TriangleHierarchy::build(mesh.positions, mesh.indices); }});
    const double triangles = static_cast<double>(hierarchy.triangleCount());
    bench::report(QStringLiteral("hierarchy of 1,000,000 triangles, built in"),
                  bench::median(costs[0], &Cost::wall), millisecond, QStringLiteral("<= 200"));
    bench::report(QStringLiteral("hierarchy of 1,000,000 triangles, size"),
                  static_cast<double>(hierarchy.byteSize()) / triangles, QStringLiteral("bytes a triangle"));
}

void measureCloud(const Model& model)
{
    const hostkit::PointSet& points = *model.parts.front().as<hostkit::PointSet>();
    std::shared_ptr<const hostkit::PointSet> built;
    hostkit::MeshSource source;
    source.positions = points.positions;
    source.colors = points.colors;
    source.indices.resize(points.pointCount());
    std::iota(source.indices.begin(), source.indices.end(), 0U);
    std::shuffle(source.indices.begin(), source.indices.end(), std::mt19937(1));
    const auto costs =
        bench::interleave(5, {[&] { built = hostkit::PointSetBuilder::build(source, [](float) {}); }});
    bench::report(QStringLiteral("1,000,000 points, in random order: built with hierarchy in"),
                  bench::median(costs[0], &Cost::wall), millisecond, QStringLiteral("<= 1000"));
    bench::report(QStringLiteral("hierarchy of 1,000,000 points, size"),
                  static_cast<double>(built->hierarchy.tree().byteSize()) / built->pointCount(),
                  QStringLiteral("bytes a point"), QStringLiteral("<= 10"));
}

void measureAll(const QStringList& arguments)
{
    const hostkit::OffscreenView view(bench::frameSize());
    const QStringList names = bench::sceneNames();
    for (const QString& name : names) {
        const Model model = bench::buildModel(bench::makeScene(name, arguments.value(0)).arrays);
        {
            HostScene host{QString(), QString(), QString()};
            bench::show(host, model);
            measurePicks(host, name);
        }
        if (name == names.front()) {
            measureHierarchy(model);
        } else if (name == names.back()) {
            measureCloud(model);
        }
    }
    for (const QString& name : bench::allSceneNames()) {
        measureFirstPick(name, arguments.value(0));
    }
}

} // namespace

int main(int argc, char** argv)
{
    return bench::run(argc, argv, measureAll);
}
