// Trees as files, scenes that come and go, and what they keep in memory.

#include "contracts/core/OruPropertiesFile.h"
#include "contracts/vis/OruVisList.h"
#include "hosts/host/OffscreenView.h"
#include "hosts/mesh/MeshVisualization.h"
#include "benchmarks/Bench.h"
#include "benchmarks/BenchScenes.h"

#include <QColor>
#include <QTemporaryDir>

#include <cstddef>
#include <iterator>
#include <memory>
#include <stdexcept>
#include <vector>

namespace {

using bench::Cost;
using hostkit::HostScene;
using hostkit::MeshVisualization;
using hostkit::Model;

constexpr int fewParts = 10000;
constexpr int manyParts = 100000;
constexpr int rounds = 7;
const QString millisecond = QStringLiteral("ms");

void expect(bool done, const QString& error)
{
    if (!done) {
        throw std::runtime_error(error.toStdString());
    }
}

std::shared_ptr<const hostkit::Mesh> smallMesh()
{
    static const Model model = bench::buildModel(bench::sphereGrid(1, 1, 1, 100));
    return model.parts.front().as<hostkit::Mesh>();
}

std::unique_ptr<MeshVisualization> makePart(OruModifiedGroup& group, const QString& name)
{
    auto part = std::make_unique<MeshVisualization>(group, smallMesh());
    part->rename(name);
    return part;
}

/// A list that a file can fill with parts.
class PartList : public OruVisList
{
public:
    explicit PartList(OruModifiedGroup& sharedGroup)
        : OruVisList(sharedGroup, QStringLiteral("tree"))
    {}

    void fill(int count)
    {
        for (int number = 0; number < count; ++number) {
            insert(makePart(group, QStringLiteral("part %1").arg(number)).release(), false);
        }
    }

    using OruVisList::insert;

protected:
    OruProperties* makeChild(const QString& name, const QString& /*type*/) override
    {
        return makePart(group, name).release();
    }
};

/// A tree of parts, its file, and what is done with them.
class PartTree
{
public:
    PartTree(int count, const QTemporaryDir& folder)
        : file_(folder.filePath(QStringLiteral("%1.json").arg(count)))
    {
        tree_.fill(count);
    }

    void save() { expect(OruPropertiesFile::save(tree_, file_, &error_), error_); }
    void loadOver() { expect(OruPropertiesFile::load(tree_, file_, &error_), error_); }
    void loadNew()
    {
        made_ = std::make_unique<PartList>(group_);
        expect(OruPropertiesFile::load(*made_, file_, &error_), error_);
    }

    /// In the order that is the hardest for a list.
    void eraseFrontToBack()
    {
        while (made_->size() > 0) {
            made_->erase(made_->at(0));
        }
    }

    void setOne()
    {
        dynamic_cast<MeshVisualization*>(tree_.at(tree_.size() / 2))->color.setValue(color_ = next());
    }

private:
    QColor next() const { return QColor::fromRgba(color_.rgba() + 1); }

    QString file_;
    QString error_;
    OruModifiedGroup group_;
    PartList tree_{group_};
    std::unique_ptr<PartList> made_;
    QColor color_ = Qt::black;
};

/// What takes as long for one part in a large tree as in a small one has a ratio of 10.
void measureTrees()
{
    const QTemporaryDir folder;
    PartTree few(fewParts, folder);
    PartTree many(manyParts, folder);
    const struct
    {
        const char* what;
        void (PartTree::*work)();
        QString aim;
    } rows[] = {{"save", &PartTree::save, {}},
                {"load over the same", &PartTree::loadOver, QStringLiteral("<= 400")},
                {"load, making all parts", &PartTree::loadNew, QStringLiteral("<= 400")},
                {"erase all, the first one first", &PartTree::eraseFrontToBack, {}},
                {"set a property of one", &PartTree::setOne, {}}};
    std::vector<bench::Work> works;
    for (PartTree* tree : {&few, &many}) {
        for (const auto& row : rows) {
            works.emplace_back([tree, &row] { (tree->*row.work)(); });
        }
    }
    const auto costs = bench::interleave(rounds, works);
    for (std::size_t i = 0; i < std::size(rows); ++i) {
        const bench::Costs& large = costs[std::size(rows) + i];
        const QString name = QStringLiteral("tree of 100,000 parts: ") + QLatin1String(rows[i].what);
        bench::report(name, bench::median(large, &Cost::caller), millisecond, rows[i].aim);
        bench::report(name, bench::medianRatio(large, costs[i], &Cost::caller),
                      QStringLiteral("of a tree of 10,000"), QStringLiteral("<= 12"));
    }
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
    for (int number = 0; number < fewParts; ++number) {
        list.insert(makePart(host.scene().group, QStringLiteral("part %1").arg(number)).release(), false);
    }
    list.bounds(); // which makes the hierarchy
    bench::report(QStringLiteral("part in a scene, without its mesh: memory"),
                  (bench::heapBytes() - before) / fewParts, QStringLiteral("bytes"),
                  QStringLiteral("<= 1000"));
}

} // namespace

int main(int argc, char** argv)
{
    return bench::run(argc, argv, [](const QStringList&) {
        const hostkit::OffscreenView view(bench::frameSize());
        measureTrees();
        measureScenes();
        measureMemory();
    });
}
