#include "hosts/import/ModelImporter.h"

#include "contracts/core/OruFileReader.h"
#include "hosts/import/internal/IsolatedReader.h"
#include "hosts/mesh/Mesh.h"
#include "hosts/mesh/MeshBuilder.h"
#include "hosts/mesh/MeshSource.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <memory>
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

std::vector<MeshSource> readParts(const QString& file, Progress& progress)
{
    try {
        return IsolatedReader(IsolatedReader::limitsFor(file))
            .read(file, progress, within(progress, 0.0f, readingShare));
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
    : std::runtime_error(QString(file + QStringLiteral(": ") + readable(reason)).toStdString())
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
            model.parts.emplace_back(part);
        }
        done += step;
    }
    if (model.parts.empty()) {
        throw Error(file, QStringLiteral("there are no triangles"));
    }
    return model;
}

} // namespace hostkit
