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

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <iterator>
#include <thread>
#include <vector>

namespace {

using bench::Cost;
using hostkit::HostScene;

constexpr int rounds = 5;

struct Start
{
    /// From plain arrays to the first frame.
    Cost fromArrays;
    /// From what the side makes of them to the first frame: all of it for the bare program.
    Cost fromModel;
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

void drawAndPickScene(bench::Arrays arrays, Start& start)
{
    HostScene host{QString(), QString(), QString()};
    hostkit::Model model;
    start.fromArrays = bench::measure([&] {
        model = bench::buildModel(std::move(arrays));
        start.fromModel = bench::measure([&] { bench::show(host, model); });
    });
    host.context().mouse.move({bench::frameWidth / 2, bench::frameHeight / 2},
                              Kelvar::UI::Toolkit::ModifierNone);
    host.send(&OruSceneEventHandler::mouseMove);
    waitForHierarchies(model);
}

/// One side, in its own process: prints wall and processor time of both kinds, and peak memory.
void runSide(const QString& side, const QString& scene, const QString& engineFile)
{
    const hostkit::OffscreenView view(bench::frameSize());
    bench::Scene made = bench::makeScene(scene, engineFile);
    bench::forgetPeak();
    Start start;
    if (side == QLatin1String("bare")) {
        start.fromArrays = bench::measure([&] { drawBare(made); });
        start.fromModel = start.fromArrays;
    } else {
        drawAndPickScene(std::move(made.arrays), start);
    }
    std::printf("%f %f %f %f %f\n", start.fromArrays.wall, start.fromArrays.processor, start.fromModel.wall,
                start.fromModel.processor, bench::peakMemory());
}

Start start(const QStringList& arguments)
{
    const std::vector<double> numbers = bench::runAlone(arguments);
    return {{numbers.at(0), numbers.at(1), 0.0}, {numbers.at(2), numbers.at(3), 0.0}, numbers.at(4)};
}

/// What a side may take in relation to the bare one.
struct Aims
{
    const char* scene;
    const char* fromArrays;
    const char* fromModel;
    const char* memory;
};

constexpr Aims usualAims = {nullptr, "-", "-", "<= 1.2"};
constexpr Aims aims[] = {
    {"1 object of 1,000,000 triangles", "<= 2.0", "-", "<= 1.2"},
    {"1,000 objects of 500", "<= 1.4", "-", "<= 1.2"},
    {"10,000 objects of 100", "<= 1.4", "<= 0.8", "<= 1.2"},
    {"100,000 objects of 20", "-", "<= 0.8", "<= 1.0"},
};

const Aims& aimsOf(const QString& scene)
{
    const auto found = std::find_if(std::begin(aims), std::end(aims),
                                    [&](const Aims& row) { return scene == QLatin1String(row.scene); });
    return found == std::end(aims) ? usualAims : *found;
}

void compareStarts(const QString& scene, const QString& engineFile)
{
    bench::Costs fromArrays[2];
    bench::Costs fromModel[2];
    std::vector<double> memory[2];
    for (int round = 0; round < rounds; ++round) {
        for (const int side : {0, 1}) {
            const QString name = side == 0 ? QStringLiteral("bare") : QStringLiteral("scene");
            const Start one = start({engineFile, name, scene});
            fromArrays[side].push_back(one.fromArrays);
            fromModel[side].push_back(one.fromModel);
            memory[side].push_back(one.memory);
        }
    }
    const Aims& wanted = aimsOf(scene);
    bench::reportRatios(scene + QStringLiteral(": arrays to first frame"), fromArrays[1], fromArrays[0],
                        QLatin1String(wanted.fromArrays));
    bench::reportRatios(scene + QStringLiteral(": first frame of a model"), fromModel[1], fromModel[0],
                        QLatin1String(wanted.fromModel));
    const double bareMemory = bench::median(memory[0]);
    bench::report(scene + QStringLiteral(": peak memory, bare"), bareMemory, QStringLiteral("MB"));
    bench::report(scene + QStringLiteral(": peak memory after frame and pick"),
                  bench::median(memory[1]) / bareMemory, QStringLiteral("of bare"),
                  QLatin1String(wanted.memory));
}

} // namespace

int main(int argc, char** argv)
{
    return bench::run(argc, argv, [](const QStringList& arguments) {
        if (arguments.size() == 3) {
            runSide(arguments[1], arguments[2], arguments[0]);
            return;
        }
        for (const QString& name : bench::allSceneNames()) {
            compareStarts(name, arguments.value(0));
        }
    });
}
