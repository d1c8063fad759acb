// The small operations that every event and frame is made of: property reads and writes, changes that reach a
// watcher, the stored viewpoint, a move of the pointer that needs no hit test.

#include "Scene/navigation/OruPropertyAdaptor.h"
#include "contracts/core/OruModifiedWatcher.h"
#include "hosts/host/HostScene.h"
#include "hosts/host/OffscreenView.h"
#include "benchmarks/Bench.h"

#include <QHash>
#include <QTimer>

#include <benchmark/benchmark.h>

#include <memory>
#include <vector>

namespace {

using hostkit::HostScene;
using Kelvar::Math::Matrix;

const QString plainRead = QStringLiteral("plain member, read");
const QString adaptorRead = QStringLiteral("adaptor, cached read");
const QString objectRead = QStringLiteral("QObject::property, read");

void readPlain(benchmark::State& state)
{
    float member = 1.0f;
    float* place = &member;
    benchmark::DoNotOptimize(place);
    for (auto _ : state) {
        benchmark::DoNotOptimize(*place);
        benchmark::ClobberMemory();
    }
}

void readAdaptor(benchmark::State& state)
{
    OruModifiedGroup group;
    OruProperties node(group);
    const OruPropertyAdaptor<float> adaptor(node, QStringLiteral("key"), 1.0f, QString());
    for (auto _ : state) {
        benchmark::DoNotOptimize(adaptor.value());
        benchmark::ClobberMemory();
    }
}

void readObject(benchmark::State& state)
{
    const QTimer object;
    for (auto _ : state) {
        benchmark::DoNotOptimize(object.property("interval").toInt());
    }
}

/// One write at the end of a chain of ten nodes, asked for and seen at its head.
void writeSeenAbove(benchmark::State& state)
{
    OruModifiedGroup group;
    OruProperties top(group);
    OruProperties* lowest = &top;
    for (int level = 0; level < 10; ++level) {
        auto node = std::make_unique<OruProperties>(group);
        node->rename(QStringLiteral("node"));
        lowest->insert(node.get(), false);
        lowest = node.release();
    }
    OruPropertyAdaptor<int> written(*lowest, QStringLiteral("key"), 0, QString());
    const OruModifiedWatcher watcher(top);
    int value = 0;
    for (auto _ : state) {
        written.setValue(++value);
        benchmark::DoNotOptimize(watcher.modified());
        watcher.reset();
    }
}

void setEqualViewpoint(benchmark::State& state, HostScene& host)
{
    const QString name = host.context().viewpointName;
    const Matrix view = host.scene().viewpoint(name);
    for (auto _ : state) {
        benchmark::DoNotOptimize(host.scene().setViewpoint(name, view));
    }
}

void setChangedViewpoint(benchmark::State& state, HostScene& host)
{
    const QString name = host.context().viewpointName;
    const Matrix views[] = {Matrix::rotate(Kelvar::Math::VectorX, 33.3f),
                            Matrix::rotate(Kelvar::Math::VectorY, 77.7f)};
    unsigned int turn = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(host.scene().setViewpoint(name, views[++turn % 2]));
    }
}

/// A key is held down, so that nothing hovers; no button is, so that nothing turns.
void movePointer(benchmark::State& state, HostScene& host)
{
    OruSceneEventContext context(host.context());
    context.modelView = host.scene().viewpoint(context.viewpointName);
    context.keyModifiers = 1;
    int x = 0;
    for (auto _ : state) {
        context.mouse.move({++x % bench::frameWidth, 100}, Kelvar::UI::Toolkit::ModifierNone);
        benchmark::DoNotOptimize(host.scene().mouseMove(context));
    }
}

/// Keeps the median of each benchmark's repetitions, in nanoseconds.
class Medians : public benchmark::BenchmarkReporter
{
public:
    bool ReportContext(const Context&) override { return true; }
    void ReportRuns(const std::vector<Run>& runs) override
    {
        for (const Run& run : runs) {
            if (run.aggregate_name == "median") {
                nanoseconds.insert(QString::fromStdString(run.run_name.function_name),
                                   run.GetAdjustedCPUTime());
            }
        }
    }

    QHash<QString, double> nanoseconds;
};

void runBenchmarks(HostScene& host, Medians& medians)
{
    const auto add = [](const QString& name, auto function, auto&... arguments) {
        benchmark::RegisterBenchmark(qUtf8Printable(name), [=, &arguments...](benchmark::State& state) {
            function(state, arguments...);
        });
    };
    add(plainRead, readPlain);
    add(adaptorRead, readAdaptor);
    add(objectRead, readObject);
    add(QStringLiteral("property write seen by a watcher 10 levels up"), writeSeenAbove);
    add(QStringLiteral("setViewpoint, equal matrix"), setEqualViewpoint, host);
    add(QStringLiteral("setViewpoint, changed matrix"), setChangedViewpoint, host);
    add(QStringLiteral("mouseMove without hit test"), movePointer, host);

    char program[] = "bench";
    char repetitions[] = "--benchmark_repetitions=9";
    char interleaving[] = "--benchmark_enable_random_interleaving=true";
    char duration[] = "--benchmark_min_time=0.05";
    char* arguments[] = {program, repetitions, interleaving, duration};
    int count = 4;
    benchmark::Initialize(&count, arguments);
    benchmark::RunSpecifiedBenchmarks(&medians);
}

} // namespace

int main(int argc, char** argv)
{
    return bench::run(argc, argv, [](const QStringList&) {
        const hostkit::OffscreenView view(bench::frameSize());
        HostScene host{QString(), QString(), QString()};
        Medians medians;
        runBenchmarks(host, medians);
        QStringList names = medians.nanoseconds.keys();
        names.sort();
        for (const QString& name : names) {
            bench::report(name, medians.nanoseconds[name], QStringLiteral("ns"));
        }
        const double read = medians.nanoseconds[adaptorRead];
        bench::report(QStringLiteral("adaptor, cached read"), read / medians.nanoseconds[plainRead],
                      QStringLiteral("of a plain read"));
        bench::report(QStringLiteral("adaptor, cached read"), read / medians.nanoseconds[objectRead],
                      QStringLiteral("of QObject::property"), QStringLiteral("<= 1.0"));
    });
}
