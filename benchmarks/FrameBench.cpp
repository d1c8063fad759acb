// Frames against a program without a library, and what a scene adds to a frame in which nothing changed.

#include "contracts/ogl/OruOglGl.h"
#include "contracts/vis/OruVisList.h"
#include "hosts/host/OffscreenView.h"
#include "hosts/mesh/MeshVisualization.h"
#include "hosts/mesh/ModelParts.h"
#include "benchmarks/BareProgram.h"
#include "benchmarks/Bench.h"
#include "benchmarks/BenchScenes.h"

#include <dlfcn.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <utility>
#include <vector>

namespace {

using bench::Cost;
using hostkit::HostScene;
using hostkit::Model;
using Kelvar::Math::Matrix;
using Kelvar::Math::Vector3;

constexpr int rounds = 15;

/// What the list's own draws and the finishes have taken since this was set to 0.
Cost excluded;

void exclude(const Cost& cost)
{
    excluded.wall += cost.wall;
    excluded.caller += cost.caller;
}

} // namespace

/// Stands in front of OpenGL's, to tell the wait for the renderer from the library's own share.
void glFinish()
{
    static const auto finish = reinterpret_cast<void (*)()>(dlsym(RTLD_NEXT, "glFinish"));
    exclude(bench::measure(finish));
}

namespace {

/// A list that tells its draws from the rest of the frame.
class TimedList : public OruVisList
{
public:
    explicit TimedList(OruModifiedGroup& modifiedGroup)
        : OruVisList(modifiedGroup, QStringLiteral("timed"))
    {}
    void draw3d(const DrawContext& context) override
    {
        exclude(bench::measure([&] { OruVisList::draw3d(context); }));
    }
    void draw2d(const DrawContext& context) override
    {
        exclude(bench::measure([&] { OruVisList::draw2d(context); }));
    }
};

/// Throws when more than a thousandth of the pixels differ; the scene's frame line does not count.
void expectSamePicture(const QImage& scene, const QImage& bare)
{
    constexpr int tolerance = 2;
    int different = 0;
    for (int y = 1; y < scene.height() - 1; ++y) {
        for (int x = 1; x < scene.width() - 1; ++x) {
            const QColor a = scene.pixelColor(x, y);
            const QColor b = bare.pixelColor(x, y);
            const bool same = std::abs(a.red() - b.red()) <= tolerance &&
                              std::abs(a.green() - b.green()) <= tolerance &&
                              std::abs(a.blue() - b.blue()) <= tolerance;
            different += same ? 0 : 1;
        }
    }
    if (different > scene.width() * scene.height() / 1000) {
        throw std::runtime_error("the pictures differ in " + std::to_string(different) + " pixels");
    }
}

void compareFrames(hostkit::OffscreenView& view, HostScene& host, const bench::BareProgram& bare,
                   const QString& name, const QString& aim)
{
    const auto drawBare = [&] {
        bare.draw(host.context().modelView, host.context().projection, bench::frameSize());
    };
    const auto drawScene = [&] { host.draw(); };
    drawBare();
    const QImage barePicture = view.grab();
    drawScene();
    expectSamePicture(view.grab(), barePicture);
    const auto costs = bench::interleave(rounds, {drawBare, drawScene});
    bench::reportRatios(name, costs[1], costs[0], aim);
}

void measureFrames(hostkit::OffscreenView& view, const QString& name, const QString& engineFile,
                   const QString& aim)
{
    const Model model = bench::buildModel(bench::makeScene(name, engineFile).arrays);
    HostScene host{QString(), QString(), QString()};
    bench::show(host, model);
    bench::BareProgram bare;
    bare.add(model);
    compareFrames(view, host, bare, name + QStringLiteral(": frame"), aim);
    bench::magnifyToShare(host, model, 0.1);
    compareFrames(view, host, bare, name + QStringLiteral(": frame, a tenth in view"),
                  QStringLiteral("<= 0.75"));
}

/// Many small objects close together, which a model draws together.
struct DenseScene
{
    const char* name;
    int columns, rows, layers;
    uint32_t triangles;
    const char* aim;
    /// With every tenth object moved or marked; null: not measured.
    const char* changedAim;
};

const DenseScene denseScenes[] = {
    {"dense, 1,000 objects of 500", 10, 10, 10, 500, "<= 0.76", nullptr},
    {"dense, 10,000 objects of 100", 25, 20, 20, 100, "<= 0.80", nullptr},
    {"dense, 100,000 objects of 20", 50, 50, 40, 20, "<= 0.65", "<= 0.85"},
};

/// Half of them a little aside, the others marked.
void changeEveryTenth(OruProperties& parts)
{
    const Matrix aside = Matrix::translate(Vector3(0.1f, 0.0f, 0.0f));
    for (unsigned int i = 0; i < parts.size(); i += 10) {
        auto& part = dynamic_cast<hostkit::MeshVisualization&>(*parts.at(i));
        if (i % 20 == 0) {
            part.offset.setValue(aside);
        } else {
            part.marked.setValue(true);
        }
    }
}

/// The parts of a model, nearest first in a view.
Model sorted(Model model, const Matrix& modelView)
{
    const auto nearest = [&](const hostkit::ModelPart& part) {
        Kelvar::Math::BoundingBox box = part.shape().bounds;
        box *= modelView;
        return box.max().z;
    };
    std::sort(model.parts.begin(), model.parts.end(),
              [&](const auto& a, const auto& b) { return nearest(a) > nearest(b); });
    return model;
}

/// All parts in one, each in its color.
Model joined(const Model& model)
{
    hostkit::MeshSource all;
    all.name = model.name;
    for (const hostkit::ModelPart& part : model.parts) {
        const auto mesh = part.as<hostkit::Mesh>();
        const auto first = static_cast<uint32_t>(all.positions.size());
        const QColor color = mesh->material.color;
        all.positions.insert(all.positions.end(), mesh->positions.begin(), mesh->positions.end());
        all.normals.insert(all.normals.end(), mesh->normals.begin(), mesh->normals.end());
        all.colors.resize(all.positions.size(),
                          qRgba(color.blue(), color.green(), color.red(), 0xff)); // red first in memory
        for (const uint32_t index : mesh->indices) {
            all.indices.push_back(first + index);
        }
    }
    return bench::buildModel({all});
}

/// What the same program could do better by itself.
void compareBare(HostScene& host, const Model& model, const bench::BareProgram& bare, const QString& name)
{
    const Matrix view = host.context().modelView;
    const Model nearestFirst = sorted(model, view);
    bench::BareProgram inOrder;
    inOrder.add(nearestFirst);
    bench::BareProgram atOnce;
    atOnce.add(joined(nearestFirst));
    std::vector<bench::Work> draws;
    for (const bench::BareProgram* program : {&bare, &std::as_const(inOrder), &std::as_const(atOnce)}) {
        draws.emplace_back(
            [&, program] { program->draw(view, host.context().projection, bench::frameSize()); });
    }
    const auto costs = bench::interleave(rounds, draws);
    for (const auto& [what, at] : {std::pair("sorted", 1), std::pair("sorted, in one buffer", 2)}) {
        bench::report(name + QStringLiteral(": frame, bare, %1, wall").arg(QLatin1String(what)),
                      bench::medianRatio(costs[static_cast<std::size_t>(at)], costs[0], &Cost::wall),
                      QStringLiteral("of bare"));
    }
}

void measureDense(hostkit::OffscreenView& view, const DenseScene& scene)
{
    const QString name = QString::fromLatin1(scene.name);
    const Model model = bench::buildModel(
        bench::sphereGrid(scene.columns, scene.rows, scene.layers, scene.triangles, bench::denseSpacing));
    HostScene host{QString(), QString(), QString()};
    bench::show(host, model);
    bench::BareProgram bare;
    bare.add(model);
    compareFrames(view, host, bare, name + QStringLiteral(": frame"), QString::fromLatin1(scene.aim));
    compareBare(host, model, bare, name);
    if (!scene.changedAim) {
        return;
    }
    changeEveryTenth(*host.scene().render.visualizations[model.name]);
    host.changed();
    host.draw();
    const auto costs = bench::interleave(
        rounds, {[&] { bare.draw(host.context().modelView, host.context().projection, bench::frameSize()); },
                 [&] { host.draw(); }});
    bench::reportRatios(name + QStringLiteral(", every tenth moved or marked: frame"), costs[1], costs[0],
                        QString::fromLatin1(scene.changedAim));
}

/// What lines cost where there are many, in relation to the same frame without.
void measureEdges()
{
    const Model model = bench::buildModel(bench::gear());
    HostScene host{QString(), QString(), QString()};
    bench::show(host, model);
    hostkit::ModelParts parts(host.scene().render.visualizations);
    std::vector<bench::Work> frames;
    for (const char* edges : {"off", "edges", "wireframe"}) {
        frames.emplace_back([&, edges] {
            parts.setEdges(QString::fromLatin1(edges));
            host.draw();
        });
    }
    const auto costs = bench::interleave(rounds, frames);
    const QString name = QStringLiteral("1,000,000 triangles with 500,160 edges: frame");
    bench::report(name + QStringLiteral(", wall"), bench::median(costs[0], &Cost::wall),
                  QStringLiteral("ms"));
    for (const auto& [what, cost] : {std::pair("edges on", costs[1]), std::pair("wireframe", costs[2])}) {
        bench::report(name + QStringLiteral(" with %1, processor").arg(QLatin1String(what)),
                      bench::medianRatio(cost, costs[0], &Cost::processor), QStringLiteral("of plain"));
    }
}

/// Whether the objects draw something, each or all together. What the driver has to tidy up after thousands
/// of draws, and the cold caches behind them, fall into the library's share of the next frame; objects that
/// draw nothing, or that are beside the view, show it without.
enum class Objects
{
    Meshes,
    Model,
    ModelBeside,
    Empty
};

struct OwnShare
{
    Objects kind;
    const char* name;
    std::vector<int> counts;
    uint32_t triangles;
    const char* aim;
};

const OwnShare ownShares[] = {
    {Objects::Meshes, "meshes", {10, 10000}, 100, "<= 0.2"},
    {Objects::Model, "meshes of a model", {10, 10000, 100000}, 20, "<= 0.05"},
    {Objects::ModelBeside, "meshes of a model beside the view", {10, 10000, 100000}, 20, "<= 0.05"},
    {Objects::Empty, "empty objects", {10, 10000}, 100, "<= 0.2"},
};

void fill(OruVisList& list, const Model& model, Objects kind)
{
    if (kind == Objects::Model || kind == Objects::ModelBeside) {
        hostkit::ModelParts(list).add(model);
        return;
    }
    for (const hostkit::ModelPart& part : model.parts) {
        std::unique_ptr<OruVisualization> object;
        if (kind == Objects::Meshes) {
            object = std::make_unique<hostkit::MeshVisualization>(list.group, part.as<hostkit::Mesh>());
        } else {
            object = std::make_unique<OruVisualization>(list.group, QStringLiteral("empty"));
            object->rename(part.shape().name);
        }
        list.insert(object.release(), false);
    }
}

void measureOwnShare(const OwnShare& share, int objects)
{
    HostScene host{QString(), QString(), QString()};
    auto list = std::make_unique<TimedList>(host.scene().group);
    fill(*list, bench::buildModel(bench::sphereGrid(objects, 1, 1, share.triangles)), share.kind);
    host.scene().render.visualizations.insert(list.release(), false);
    bench::show(host, Model());
    if (share.kind == Objects::ModelBeside) {
        bench::setView(host, host.context().modelView * Matrix::translate(Vector3(100.0f, 0.0f, 0.0f)));
    }

    bench::Costs own;
    for (int frame = 0; frame < 200; ++frame) {
        excluded = Cost();
        const Cost cost = bench::measure([&] { host.scene().drawGl(host.context()); });
        own.push_back({cost.wall - excluded.wall, 0.0, cost.caller - excluded.caller});
    }
    const QString name =
        QStringLiteral("unchanged frame, own share at %1 %2, ").arg(objects).arg(QLatin1String(share.name));
    const QString unit = QStringLiteral("ms");
    const QString aim = QString::fromLatin1(share.aim);
    bench::report(name + QStringLiteral("wall"), bench::median(own, &Cost::wall), unit, aim);
    bench::report(name + QStringLiteral("calling thread"), bench::median(own, &Cost::caller), unit, aim);
}

void measureAll(const QStringList& arguments)
{
    hostkit::OffscreenView view(bench::frameSize());
    const QStringList aims = {QStringLiteral("<= 1.0"), QStringLiteral("<= 1.0"), QStringLiteral("<= 1.0"),
                              QStringLiteral("-"), QStringLiteral("<= 1.0")};
    const QStringList names = bench::sceneNames();
    for (int i = 0; i < names.size(); ++i) {
        measureFrames(view, names[i], arguments.value(0), aims[i]);
    }
    for (const DenseScene& scene : denseScenes) {
        measureDense(view, scene);
    }
    measureEdges();
    for (const OwnShare& share : ownShares) {
        for (const int count : share.counts) {
            measureOwnShare(share, count);
        }
    }
}

} // namespace

int main(int argc, char** argv)
{
    return bench::run(argc, argv, measureAll);
}
