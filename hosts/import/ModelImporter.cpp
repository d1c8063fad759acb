#include "hosts/import/ModelImporter.h"

#include "hosts/import/internal/IsolatedReader.h"
#include "hosts/mesh/MeshBuilder.h"

#include <QFile>
#include <QFileInfo>

namespace hostkit {

namespace {

/// Share of the whole work that goes into reading the file; the rest makes meshes.
constexpr float readingShare = 0.3f;

/// Says of a file that cannot even be opened why.
void checkFile(const QString& file)
{
    const QFileInfo info(file);
    if (!info.exists()) {
        throw ModelImporter::Error(file, QStringLiteral("no such file"));
    }
    if (info.isDir()) {
        throw ModelImporter::Error(file, QStringLiteral("is a folder"));
    }
    QFile opened(file);
    if (!opened.open(QIODevice::ReadOnly)) {
        throw ModelImporter::Error(file, opened.errorString());
    }
    if (info.isFile() && info.size() == 0) {
        throw ModelImporter::Error(file, QStringLiteral("the file is empty"));
    }
}

/// Passes a share of one piece of the work on as a share of the whole.
ReportShare within(Progress& progress, float from, float to)
{
    return [&progress, from, to](float share) { progress.report(from + (to - from) * share); };
}

std::vector<MeshSource> readParts(const QString& file, Progress& progress)
{
    try {
        return IsolatedReader::read(file, progress, within(progress, 0.0f, readingShare));
    } catch (const Progress::Cancelled&) {
        throw;
    } catch (const std::runtime_error& error) {
        throw ModelImporter::Error(file, QString::fromUtf8(error.what()));
    }
}

std::shared_ptr<const Mesh> buildPart(const QString& file, MeshSource source, const ReportShare& report)
{
    const QString name = source.name;
    try {
        return MeshBuilder::build(std::move(source), report);
    } catch (const Progress::Cancelled&) {
        throw;
    } catch (const std::runtime_error& error) {
        throw ModelImporter::Error(file, QStringLiteral("part \"%1\": %2").arg(name, error.what()));
    }
}

} // namespace

ModelImporter::Error::Error(const QString& file, const QString& reason)
    : std::runtime_error(QString(file + QStringLiteral(": ") + reason).toStdString())
{}

Model ModelImporter::load(const QString& file, Progress& progress)
{
    checkFile(file);
    std::vector<MeshSource> sources = readParts(file, progress);
    Model model;
    model.name = QFileInfo(file).completeBaseName();
    const float step = (1.0f - readingShare) / static_cast<float>(sources.size() + 1);
    float done = readingShare;
    for (MeshSource& source : sources) {
        if (source.name.isEmpty()) {
            source.name = model.name;
        }
        if (const auto part = buildPart(file, std::move(source), within(progress, done, done + step))) {
            model.parts.push_back(part);
        }
        done += step;
    }
    if (model.parts.empty()) {
        throw Error(file, QStringLiteral("there are no triangles"));
    }
    return model;
}

} // namespace hostkit
