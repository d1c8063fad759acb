// Frames against a program without a library, and what a scene adds to a frame in which nothing changed.

#include "contracts/ogl/OruOglGl.h"
#include "contracts/vis/OruVisList.h"
#include "hosts/kit/MeshVisualization.h"
#include "hosts/kit/OffscreenView.h"
#include "benchmarks/BareProgram.h"
#include "benchmarks/Bench.h"
#include "benchmarks/BenchScenes.h"

#include <dlfcn.h>

#include <cstdlib>
#include <memory>
#include <stdexcept>

namespace {

using bench::Cost;
using hostkit::HostScene;
using hostkit::Model;

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
                  QStringLiteral("<= 0.3"));
}

void measureOwnShare(int objects)
{
    HostScene host{QString(), QString(), QString()};
    OruVisList& top = host.scene().render.visualizations;
    auto list = std::make_unique<TimedList>(host.scene().group);
    const Model model = bench::buildModel(bench::sphereGrid(objects, 1, 1, 100));
    for (const auto& mesh : model.parts) {
        list->insert(std::make_unique<hostkit::MeshVisualization>(host.scene().group, mesh).release(), false);
    }
    top.insert(list.release(), false);
    bench::show(host, Model());

    bench::Costs own;
    for (int frame = 0; frame < 200; ++frame) {
        excluded = Cost();
        const Cost cost = bench::measure([&] { host.scene().drawGl(host.context()); });
        own.push_back({cost.wall - excluded.wall, 0.0, cost.caller - excluded.caller});
    }
    const QString name = QStringLiteral("unchanged frame, own share at %1 objects, ").arg(objects);
    const QString unit = QStringLiteral("ms");
    const QString aim = QStringLiteral("<= 0.2");
    bench::report(name + QStringLiteral("wall"), bench::median(own, &Cost::wall), unit, aim);
    bench::report(name + QStringLiteral("calling thread"), bench::median(own, &Cost::caller), unit, aim);
}

void measureAll(const QStringList& arguments)
{
    hostkit::OffscreenView view(bench::frameSize());
    const QStringList aims = {QStringLiteral("<= 1.0"), QStringLiteral("<= 0.85"), QStringLiteral("<= 1.0"),
                              QStringLiteral("-")};
    const QStringList names = bench::sceneNames();
    for (int i = 0; i < names.size(); ++i) {
        measureFrames(view, names[i], arguments.value(0), aims[i]);
    }
    measureOwnShare(10);
    measureOwnShare(10000);
}

} // namespace

int main(int argc, char** argv)
{
    return bench::run(argc, argv, measureAll);
}
