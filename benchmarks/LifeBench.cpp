// Trees as files, scenes that come and go, and what they keep in memory.

#include "contracts/core/OruPropertiesFile.h"
#include "contracts/vis/OruVisList.h"
#include "contracts/vis/OruVisViewpoint.h"
#include "hosts/host/OffscreenView.h"
#include "hosts/mesh/MeshVisualization.h"
#include "benchmarks/Bench.h"
#include "benchmarks/BenchScenes.h"

#include <QTemporaryDir>

#include <memory>
#include <stdexcept>

namespace {

using bench::Cost;
using hostkit::HostScene;
using hostkit::Model;

constexpr int nodes = 10000;
constexpr int rounds = 9;
const QString millisecond = QStringLiteral("ms");

void expect(bool done, const QString& error)
{
    if (!done) {
        throw std::runtime_error(error.toStdString());
    }
}

void measureFiles()
{
    const QTemporaryDir folder;
    const QString file = folder.filePath(QStringLiteral("tree.json"));
    OruModifiedGroup group;
    OruVisList tree(group, QStringLiteral("tree"));
    for (int node = 0; node < nodes; ++node) {
        tree.child(QStringLiteral("viewpoint %1").arg(node), OruVisViewpoint::typeString);
    }
    std::unique_ptr<OruVisList> made;
    QString error;
    const auto save = [&] { expect(OruPropertiesFile::save(tree, file, &error), error); };
    const auto load = [&] { expect(OruPropertiesFile::load(tree, file, &error), error); };
    const auto make = [&] {
        made = std::make_unique<OruVisList>(group, QStringLiteral("tree"));
        expect(OruPropertiesFile::load(*made, file, &error), error);
    };
    const auto costs = bench::interleave(rounds, {save, load, make});
    bench::report(QStringLiteral("tree of 10,000 nodes: save"), bench::median(costs[0], &Cost::wall),
                  millisecond);
    bench::report(QStringLiteral("tree of 10,000 nodes: load over the same"),
                  bench::median(costs[1], &Cost::wall), millisecond);
    bench::report(QStringLiteral("tree of 10,000 nodes: load, making all nodes"),
                  bench::median(costs[2], &Cost::wall), millisecond);
}

void measureScenes()
{
    std::unique_ptr<HostScene> host;
    const auto make = [&] { host = std::make_unique<HostScene>(QString(), QString(), QString()); };
    const auto costs = bench::interleave(200, {make, [&] { host.reset(); }});
    bench::report(QStringLiteral("scene: construction"), bench::median(costs[0], &Cost::wall), millisecond);
    bench::report(QStringLiteral("scene: teardown"), bench::median(costs[1], &Cost::wall), millisecond);
}

/// In bytes, without what the OpenGL driver keeps: nothing is drawn.
void measureMemory()
{
    const bench::Arrays arrays = bench::sphereGrid(1, 1, 1, 1000000);
    const hostkit::MeshSource& sphere = arrays.front();
    const double plain = static_cast<double>((sphere.positions.size() + sphere.normals.size()) *
                                                 sizeof(Kelvar::Math::Vector3) +
                                             sphere.indices.size() * sizeof(uint32_t));
    double before = bench::heapBytes();
    const Model model = bench::buildModel(arrays);
    const double mesh = bench::heapBytes() - before;
    bench::report(QStringLiteral("mesh of 1,000,000 triangles: memory"), mesh * 1e-6, QStringLiteral("MB"));
    bench::report(QStringLiteral("mesh of 1,000,000 triangles: memory"), mesh / plain,
                  QStringLiteral("of its plain arrays"));

    HostScene host{QString(), QString(), QString()};
    OruVisList& list = host.scene().render.visualizations;
    before = bench::heapBytes();
    for (int number = 0; number < nodes; ++number) {
        auto part = std::make_unique<hostkit::MeshVisualization>(host.scene().group,
                                                                 model.parts.front().as<hostkit::Mesh>());
        part->rename(QStringLiteral("part %1").arg(number));
        list.insert(part.release(), false);
    }
    bench::report(QStringLiteral("object in a scene, without its mesh: memory"),
                  (bench::heapBytes() - before) / nodes, QStringLiteral("bytes"));
}

} // namespace

int main(int argc, char** argv)
{
    return bench::run(argc, argv, [](const QStringList&) {
        const hostkit::OffscreenView view(bench::frameSize());
        measureFiles();
        measureScenes();
        measureMemory();
    });
}
