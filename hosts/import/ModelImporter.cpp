#include "hosts/import/ModelImporter.h"

#include "contracts/core/OruFileReader.h"
#include "hosts/import/internal/IsolatedReader.h"
#include "hosts/import/internal/ModelSource.h"
#include "hosts/mesh/AnyShape.h"
#include "hosts/mesh/MeshSource.h"
#include "hosts/mesh/ShapeBuilder.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>
#include <optional>
#include <utility>
#include <vector>

namespace hostkit {

namespace {

/// Share of the whole work that goes into reading the file; the rest makes meshes.
constexpr float readingShare = 0.3f;

constexpr int mostReasonCharacters = 300;

/// One line of text without what a terminal would obey; what an importer says may be anything.
QString readable(const QString& reason)
{
    QString line = reason;
    std::replace_if(
        line.begin(), line.end(), [](QChar c) { return !c.isPrint() && !c.isSurrogate(); }, QLatin1Char(' '));
    line = line.simplified();
    if (line.size() > mostReasonCharacters) {
        line = line.left(mostReasonCharacters - 3) + QStringLiteral("...");
    }
    return line.isEmpty() ? QStringLiteral("damaged") : line;
}

/// Says of a file that cannot even be opened why.
void checkFile(const QString& file)
{
    const QFileInfo info(file);
    if (!info.exists()) {
        throw ModelImporter::Error(file, QStringLiteral("no such file"));
    }
    const QString refusal = OruFileReader::refusal(file);
    if (!refusal.isEmpty()) {
        throw ModelImporter::Error(file, refusal);
    }
    QFile opened(file);
    if (!opened.open(QIODevice::ReadOnly)) {
        throw ModelImporter::Error(file, opened.errorString());
    }
    if (info.size() == 0) {
        throw ModelImporter::Error(file, QStringLiteral("the file is empty"));
    }
}

/// Passes a share of one piece of the work on as a share of the whole.
ReportShare within(Progress& progress, float from, float to)
{
    return [&progress, from, to](float share) { progress.report(from + (to - from) * share); };
}

/// Formats of surfaces and solids that are no meshes yet.
constexpr std::array<const char*, 5> exactFormats = {"step", "stp", "iges", "igs", "brep"};

/// Its header is "glTF" and a version of four bytes.
bool isBinaryGltf1(const QString& file)
{
    QFile opened(file);
    return opened.open(QIODevice::ReadOnly) && opened.read(8) == QByteArray("glTF\1\0\0\0", 8);
}

/// What to tell of a file that reading it came to nothing.
QString refusalOf(const QString& file, const QString& reason)
{
    if (isBinaryGltf1(file)) {
        return QStringLiteral("binary glTF of version 1 is not read, but version 2 is");
    }
    const QFileInfo info(file);
    const QString suffix = info.suffix().toLower();
    const bool exact = std::any_of(exactFormats.begin(), exactFormats.end(),
                                   [&](const char* known) { return suffix == QLatin1String(known); });
    return exact ? QStringLiteral("not a mesh format; \"gmsh %1 -2 -o %2.stl\" makes a mesh of it")
                       .arg(info.fileName(), info.completeBaseName())
                 : reason;
}

ModelSource readSource(const QString& file, Progress& progress)
{
    try {
        return IsolatedReader(IsolatedReader::limitsFor(file))
            .read(file, progress, within(progress, 0.0f, readingShare));
    } catch (const Progress::Cancelled&) {
        throw;
    } catch (const std::runtime_error& error) {
        throw ModelImporter::Error(file, refusalOf(file, QString::fromUtf8(error.what())));
    }
}

std::optional<AnyShape> buildShape(const QString& file, MeshSource source, const ReportShare& report)
{
    const QString name = source.name;
    try {
        return ShapeBuilder::build(std::move(source), report);
    } catch (const Progress::Cancelled&) {
        throw;
    } catch (const std::runtime_error& error) {
        throw ModelImporter::Error(file, QStringLiteral("part \"%1\": %2").arg(name, error.what()));
    }
}

/// What parts show, in the order of the sources; nothing where nothing is left of one.
std::vector<std::optional<AnyShape>> buildShapes(const QString& file, std::vector<MeshSource> sources,
                                                 const QString& modelName, Progress& progress)
{
    std::vector<std::optional<AnyShape>> shapes;
    shapes.reserve(sources.size());
    const float step = (1.0f - readingShare) / static_cast<float>(sources.size() + 1);
    float done = readingShare;
    for (MeshSource& source : sources) {
        if (source.name.isEmpty()) {
            source.name = modelName;
        }
        shapes.push_back(buildShape(file, std::move(source), within(progress, done, done + step)));
        done += step;
    }
    return shapes;
}

/// The nodes of a source as a tree. A node without parts is left out.
class NodeTree
{
public:
    NodeTree(const ModelSource& source, const std::vector<std::optional<AnyShape>>& shapes)
        : nodes_(source.nodes.size())
        , children_(source.nodes.size())
    {
        for (std::size_t i = 0; i < source.nodes.size(); ++i) {
            nodes_[i].name = source.nodes[i].name;
            if (i > 0) {
                children_[source.nodes[i].parent].push_back(i);
            }
        }
        for (const ModelSource::Use& use : source.uses) {
            if (shapes[use.mesh]) {
                nodes_[use.node].parts.emplace_back(*shapes[use.mesh], use.placement, use.name);
            }
        }
    }

    /// To be called once.
    ModelNode root() { return take(0); }

private:
    ModelNode take(std::size_t index)
    {
        ModelNode node = std::move(nodes_[index]);
        for (const std::size_t child : children_[index]) {
            ModelNode below = take(child);
            if (!below.parts.empty() || !below.children.empty()) {
                node.children.push_back(std::move(below));
            }
        }
        return node;
    }

    std::vector<ModelNode> nodes_;
    std::vector<std::vector<std::size_t>> children_;
};

} // namespace

ModelImporter::Error::Error(const QString& file, const QString& reason)
    : std::runtime_error(QString(file + QStringLiteral(": ") + readable(reason)).toStdString())
{}

Model ModelImporter::load(const QString& file, Progress& progress)
{
    checkFile(file);
    ModelSource source = readSource(file, progress);
    const QString name = QFileInfo(file).completeBaseName();
    const auto shapes = buildShapes(file, std::move(source.meshes), name, progress);
    Model model;
    static_cast<ModelNode&>(model) = NodeTree(source, shapes).root();
    model.name = name;
    model.up = source.up;
    model.origin = source.origin;
    model.properties = std::move(source.properties);
    std::transform(source.notes.begin(), source.notes.end(), std::back_inserter(model.notes), readable);
    if (model.parts.empty() && model.children.empty()) {
        const QString why = model.notes.isEmpty() ? QString() : QStringLiteral(": ") + model.notes.first();
        throw Error(file, QStringLiteral("there is nothing to draw") + why);
    }
    return model;
}

} // namespace hostkit
