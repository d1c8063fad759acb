// How what a model of small parts costs grows with their number: its frame next to that of a program that
// draws object by object, a hover, and a change of one part.

#include "contracts/vis/OruVisList.h"
#include "hosts/host/OffscreenView.h"
#include "hosts/mesh/MeshVisualization.h"
#include "hosts/mesh/ModelParts.h"
#include "benchmarks/BareProgram.h"
#include "benchmarks/Bench.h"
#include "benchmarks/BenchScenes.h"
#include "benchmarks/Pointing.h"

namespace {

using bench::Cost;
using hostkit::HostScene;
using hostkit::Model;
using Kelvar::Math::Matrix;
using Kelvar::Math::Vector3;

constexpr int rounds = 15;
const QString millisecond = QStringLiteral("ms");

/// Spheres that nearly touch, of 20 triangles each.
struct Grid
{
    int columns, rows, layers;
};

constexpr Grid grids[] = {{1, 1, 1}, {5, 2, 1}, {5, 5, 4}, {10, 10, 10}, {25, 20, 20}, {50, 50, 40}};
constexpr uint32_t triangles = 20;

/// A list that tells when a frame comes to draw it.
class EnteredList : public OruVisList
{
public:
    explicit EnteredList(OruModifiedGroup& modifiedGroup)
        : OruVisList(modifiedGroup, QStringLiteral("entered"))
    {}
    void draw3d(const DrawContext& context) override
    {
        entered = bench::now();
        OruVisList::draw3d(context);
    }

    Cost entered;
};

/// What a person does to one part of a large model, and the next frame up to where it draws the model.
void measureChanges(HostScene& host, const EnteredList& list, hostkit::MeshVisualization& part,
                    const QString& scene)
{
    using hostkit::MeshVisualization;
    const struct
    {
        const char* name;
        void (*change)(MeshVisualization& part, bool on);
    } rows[] = {
        {"hide or show", [](MeshVisualization& one, bool on) { one.visible.setValue(!on); }},
        {"mark", [](MeshVisualization& one, bool on) { one.marked.setValue(on); }},
        {"move",
         [](MeshVisualization& one, bool on) {
             one.offset.setValue(on ? Matrix::translate(Vector3(1.0f, 0.0f, 0.0f)) : Matrix());
         }},
    };
    for (const auto& row : rows) {
        bench::Costs costs;
        for (int round = 0; round < rounds; ++round) {
            const Cost before = bench::now();
            row.change(part, round % 2 == 0);
            host.changed();
            host.draw();
            costs.push_back({list.entered.wall - before.wall, 0.0, list.entered.caller - before.caller});
        }
        const QString name =
            scene + QLatin1String(row.name) + QStringLiteral(" one, to the next frame's start");
        bench::report(name + QStringLiteral(", wall"), bench::median(costs, &Cost::wall), millisecond,
                      QStringLiteral("<= 0.2"));
        bench::report(name + QStringLiteral(", calling thread"), bench::median(costs, &Cost::caller),
                      millisecond, QStringLiteral("<= 0.2"));
    }
}

void measureFrames(HostScene& host, const Model& model, const QString& scene)
{
    bench::BareProgram bare;
    bare.add(model);
    const auto drawBare = [&] {
        bare.draw(host.context().modelView, host.context().projection, bench::frameSize());
    };
    const auto costs = bench::interleave(rounds, {drawBare, [&] { host.draw(); }});
    bench::report(scene + QStringLiteral("frame, bare"), bench::median(costs[0], &Cost::wall), millisecond);
    bench::report(scene + QStringLiteral("frame"), bench::median(costs[1], &Cost::wall), millisecond);
}

void measure(const Grid& grid)
{
    const Model model = bench::buildModel(
        bench::sphereGrid(grid.columns, grid.rows, grid.layers, triangles, bench::denseSpacing));
    const QString scene = QStringLiteral("growth, %1 parts: ").arg(model.parts.size());
    HostScene host{QString(), QString(), QString()};
    auto* const list = new EnteredList(host.scene().group);
    host.scene().render.visualizations.insert(list, false);
    const OruVisList& parts = hostkit::ModelParts(*list).add(model);
    bench::show(host, Model());
    measureFrames(host, model, scene);
    bench::Costs hovers;
    bench::Costs clears;
    bench::hover(host, rounds, hovers, clears);
    bench::reportBeyondClear(scene + QStringLiteral("mouseMove with hover"), hovers, clears,
                             QStringLiteral("<= 0.1"));
    auto& part = dynamic_cast<hostkit::MeshVisualization&>(*parts.at(parts.size() / 2));
    measureChanges(host, *list, part, scene);
}

} // namespace

int main(int argc, char** argv)
{
    return bench::run(argc, argv, [](const QStringList& /*arguments*/) {
        const hostkit::OffscreenView view(bench::frameSize());
        for (const Grid& grid : grids) {
            measure(grid);
        }
    });
}
