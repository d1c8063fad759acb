// Picks, beyond the clear and the finish that every pick contains: what lies under 21 pixels of five scenes.

#include "Scene/controller/OruSceneController.h"
#include "contracts/ogl/OruOglGl.h"
#include "contracts/vis/OruVisList.h"
#include "hosts/host/OffscreenView.h"
#include "hosts/mesh/MeshVisualization.h"
#include "hosts/mesh/ModelParts.h"
#include "hosts/mesh/PointSetBuilder.h"
#include "benchmarks/Bench.h"
#include "benchmarks/BenchScenes.h"

#include <algorithm>
#include <array>
#include <memory>
#include <numeric>
#include <random>

namespace {

using bench::Cost;
using hostkit::HostScene;
using hostkit::Model;
using Kelvar::Math::Matrix;
using Kelvar::Math::Vector3;

constexpr int pixelCount = 21;
constexpr int rounds = 40;
constexpr int loadings = 7;
const QString millisecond = QStringLiteral("ms");

/// Fixed, and spread over the picture: most on the model, a few beside it.
QPoint pixel(int number)
{
    return {bench::frameWidth * (number % 7 + 1) / 8 + 3, bench::frameHeight * (number / 7 + 1) / 4 + number};
}

void clearAndFinish()
{
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    glFinish();
}

/// The whole road of a hit test, by a controller that has nothing in its hand yet.
void pick(HostScene& host)
{
    OruSceneController controller;
    controller.OnMouseDown(host.scene().render, host.context());
}

void movePointer(HostScene& host, const QPoint& position)
{
    host.context().mouse.move(position, Kelvar::UI::Toolkit::ModifierNone);
}

/// The median of `costs` beyond that of `clears`, on the wall and of the calling thread, which does all of a
/// pick's own work.
void reportBeyondClear(const QString& name, const bench::Costs& costs, const bench::Costs& clears,
                       const QString& aim)
{
    const auto beyond = [&](double Cost::*part) {
        return bench::median(costs, part) - bench::median(clears, part);
    };
    bench::report(name + QStringLiteral(", beyond the clear, wall"), beyond(&Cost::wall), millisecond, aim);
    bench::report(name + QStringLiteral(", beyond the clear, calling thread"), beyond(&Cost::caller),
                  millisecond, aim);
}

void append(bench::Costs& all, const bench::Costs& more)
{
    all.insert(all.end(), more.begin(), more.end());
}

void measurePicks(HostScene& host, const QString& scene)
{
    std::array<bench::Costs, 3> all;
    for (int number = 0; number < pixelCount; ++number) {
        movePointer(host, pixel(number));
        const auto costs = bench::interleave(rounds, {clearAndFinish, [&] { pick(host); },
                                                      [&] {
                                                          movePointer(host, pixel(number));
                                                          host.send(&OruSceneEventHandler::mouseMove);
                                                      }});
        for (std::size_t i = 0; i < all.size(); ++i) {
            append(all[i], costs[i]);
        }
    }
    const QString aim = QStringLiteral("<= 0.05");
    bench::report(scene + QStringLiteral(": clear and finish alone"), bench::median(all[0], &Cost::wall),
                  millisecond);
    reportBeyondClear(scene + QStringLiteral(": pick"), all[1], all[0], aim);
    reportBeyondClear(scene + QStringLiteral(": mouseMove with hover"), all[2], all[0], aim);
}

/// What the first hover after the first frame takes, of a scene and meshes that are made anew each time.
void measureFirstPick(const QString& scene, const QString& engineFile)
{
    bench::Costs clears;
    bench::Costs picks;
    for (int loading = 0; loading < loadings; ++loading) {
        HostScene host{QString(), QString(), QString()};
        bench::show(host, bench::buildModel(bench::makeScene(scene, engineFile).arrays));
        movePointer(host, pixel(pixelCount / 2));
        // The first clear also tidies up after the frame.
        clearAndFinish();
        clears.push_back(bench::measure(clearAndFinish));
        picks.push_back(bench::measure([&] { pick(host); }));
    }
    reportBeyondClear(scene + QStringLiteral(": first pick after loading"), picks, clears,
                      QStringLiteral("<= 1"));
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
void measureChanges(HostScene& host, EnteredList& list, hostkit::MeshVisualization& part)
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
            QStringLiteral("%1 one of 100,000 parts, to the next frame's start").arg(QLatin1String(row.name));
        bench::report(name + QStringLiteral(", wall"), bench::median(costs, &Cost::wall), millisecond,
                      QStringLiteral("<= 0.2"));
        bench::report(name + QStringLiteral(", calling thread"), bench::median(costs, &Cost::caller),
                      millisecond, QStringLiteral("<= 0.2"));
    }
}

void measureManyParts()
{
    HostScene host{QString(), QString(), QString()};
    auto* const list = new EnteredList(host.scene().group);
    host.scene().render.visualizations.insert(list, false);
    OruVisList& model = hostkit::ModelParts(*list).add(
        bench::buildModel(bench::sphereGrid(50, 50, 40, 20, bench::denseSpacing), QStringLiteral("model")));
    bench::show(host, Model());
    bench::Costs clears;
    bench::Costs hovers;
    for (int number = 0; number < pixelCount; ++number) {
        const auto costs = bench::interleave(rounds, {clearAndFinish, [&] {
                                                          movePointer(host, pixel(number));
                                                          host.send(&OruSceneEventHandler::mouseMove);
                                                      }});
        append(clears, costs[0]);
        append(hovers, costs[1]);
    }
    reportBeyondClear(QStringLiteral("100,000 parts: mouseMove with hover"), hovers, clears,
                      QStringLiteral("<= 0.1"));
    measureChanges(host, *list, dynamic_cast<hostkit::MeshVisualization&>(*model.at(50000)));
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
        measureFirstPick(name, arguments.value(0));
        if (name == names.front()) {
            measureHierarchy(model);
        } else if (name == names.back()) {
            measureCloud(model);
        }
    }
    measureManyParts();
}

} // namespace

int main(int argc, char** argv)
{
    return bench::run(argc, argv, measureAll);
}
