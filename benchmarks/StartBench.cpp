// From plain arrays to the first finished frame, and the most memory that it takes, against a program without
// a library. Each side runs in processes of its own, which this one starts: with the name of a side and of a
// scene as arguments.

#include "contracts/ogl/OruOglFunctions.h"
#include "hosts/host/OffscreenView.h"
#include "hosts/mesh/Mesh.h"
#include "benchmarks/BareProgram.h"
#include "benchmarks/Bench.h"
#include "benchmarks/BenchScenes.h"

#include <QStringList>

#include <chrono>
#include <cstdio>
#include <thread>
#include <vector>

namespace {

using bench::Cost;
using hostkit::HostScene;

constexpr int rounds = 5;

struct Start
{
    Cost cost;
    double memory = 0.0;
};

/// As the scene shows it: from above, front right, fitting.
void drawBare(const bench::Scene& scene)
{
    using Kelvar::Math::Matrix;
    bench::BareProgram bare;
    Kelvar::Math::BoundingBox box;
    for (const hostkit::MeshSource& part : scene.arrays) {
        bare.add({part.material.color, part.positions, part.normals, part.colors, part.indices, scene.closed,
                  part.primitive});
        for (const auto& position : part.positions) {
            box.add(position);
        }
    }
    const auto turn = Matrix::translate(box.center() * -1.0f) *
                      Matrix::rotate(Kelvar::Math::VectorZ, -45.0f) *
                      Matrix::rotate(Kelvar::Math::VectorX, -54.7356f);
    Kelvar::Math::BoundingBox turned = box;
    turned *= turn;
    const float scale = 0.9f * 2.0f / (turned.max().y - turned.min().y);
    const Matrix view = turn * Matrix::scale({scale, scale, scale});
    const OruOglViewport viewport(0, 0, bench::frameWidth, bench::frameHeight);
    bare.draw(view, glGetOrtho(viewport, box, view), bench::frameSize());
}

/// Until the hierarchies are there that are built beside.
void waitForHierarchies(const hostkit::Model& model)
{
    for (const hostkit::ModelPart& part : model.parts) {
        const auto mesh = part.as<hostkit::Mesh>();
        while (mesh && mesh->triangleCount() > hostkit::MeshPicker::mostAtOnce && !mesh->picker.ready()) {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    }
}

void drawAndPickScene(bench::Arrays arrays, Cost& untilFrame)
{
    HostScene host{QString(), QString(), QString()};
    hostkit::Model model;
    untilFrame = bench::measure([&] {
        model = bench::buildModel(std::move(arrays));
        bench::show(host, model);
    });
    host.context().mouse.move({bench::frameWidth / 2, bench::frameHeight / 2},
                              Kelvar::UI::Toolkit::ModifierNone);
    host.send(&OruSceneEventHandler::mouseMove);
    waitForHierarchies(model);
}

/// One side, in its own process: prints wall time, processor time and peak memory.
void runSide(const QString& side, const QString& scene, const QString& engineFile)
{
    const hostkit::OffscreenView view(bench::frameSize());
    bench::Scene made = bench::makeScene(scene, engineFile);
    bench::forgetPeak();
    Cost cost;
    if (side == QLatin1String("bare")) {
        cost = bench::measure([&] { drawBare(made); });
    } else {
        drawAndPickScene(std::move(made.arrays), cost);
    }
    std::printf("%f %f %f\n", cost.wall, cost.processor, bench::peakMemory());
}

Start start(const QStringList& arguments)
{
    const std::vector<double> numbers = bench::runAlone(arguments);
    return {{numbers.at(0), numbers.at(1), 0.0}, numbers.at(2)};
}

void compareStarts(const QString& scene, const QString& engineFile)
{
    bench::Costs costs[2];
    std::vector<double> memory[2];
    for (int round = 0; round < rounds; ++round) {
        for (const int side : {0, 1}) {
            const QString name = side == 0 ? QStringLiteral("bare") : QStringLiteral("scene");
            const Start one = start({engineFile, name, scene});
            costs[side].push_back(one.cost);
            memory[side].push_back(one.memory);
        }
    }
    const QString aim = QStringLiteral("<= 1.2");
    bench::reportRatios(scene + QStringLiteral(": arrays to first frame"), costs[1], costs[0], aim);
    const double bareMemory = bench::median(memory[0]);
    bench::report(scene + QStringLiteral(": peak memory, bare"), bareMemory, QStringLiteral("MB"));
    bench::report(scene + QStringLiteral(": peak memory after frame and pick"),
                  bench::median(memory[1]) / bareMemory, QStringLiteral("of bare"), aim);
}

} // namespace

int main(int argc, char** argv)
{
    return bench::run(argc, argv, [](const QStringList& arguments) {
        if (arguments.size() == 3) {
            runSide(arguments[1], arguments[2], arguments[0]);
            return;
        }
        for (const QString& name : bench::sceneNames()) {
            compareStarts(name, arguments.value(0));
        }
    });
}
