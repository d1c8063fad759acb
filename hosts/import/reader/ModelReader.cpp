#include "hosts/import/reader/ModelReader.h"

#include "contracts/math/Matrix.h"
#include "hosts/import/reader/FileFrame.h"
#include "hosts/import/reader/FileProperties.h"
#include "hosts/import/reader/MaterialReader.h"
#include "hosts/import/reader/MeshReader.h"
#include "hosts/import/reader/ModelWriter.h"
#include "hosts/import/reader/Notes.h"
#include "hosts/import/reader/PlaceReckoner.h"
#include "hosts/import/reader/RegularFiles.h"
#include "hosts/import/reader/SceneTree.h"
#include "hosts/import/reader/TextureReader.h"
#include "hosts/mesh/Progress.h"

#include <QFile>
#include <QFileInfo>

#include <assimp/Importer.hpp>
#include <assimp/ProgressHandler.hpp>
#include <assimp/importerdesc.h>
#include <assimp/postprocess.h>
#include <assimp/scene.h>

#include <algorithm>
#include <array>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace hostkit {

using Kelvar::Math::Matrix;

namespace {

/// What assimp does to a scene once it is read: flat pieces of one kind, coordinates for every texture.
constexpr unsigned int steps = aiProcess_Triangulate | aiProcess_SortByPType | aiProcess_GenUVCoords;

/// Errors of assimp, by how they start, that read better in other words.
struct KnownError
{
    const char* start;
    const char* reason;
};

constexpr std::array<KnownError, 2> knownErrors = {{
    {"No suitable reader", "damaged: it does not hold what a file of its name should"},
    {"No meshes remaining", "there is nothing to draw"},
}};

/// Passes on how far assimp is.
class ReadingProgress : public Assimp::ProgressHandler
{
public:
    explicit ReadingProgress(const ReportShare& report)
        : report_(report)
    {}

    bool Update(float share) override
    {
        if (share >= 0.0f) {
            report_(std::min(share, 1.0f));
        }
        return true;
    }

private:
    ReportShare report_;
};

/// What the reader of a format is called by: the first of the suffixes that it knows.
std::string formatOf(const Assimp::Importer& importer)
{
    const int index = importer.GetPropertyInteger("importerIndex", -1);
    const aiImporterDesc* const reader =
        index < 0 ? nullptr : importer.GetImporterInfo(static_cast<std::size_t>(index));
    const std::string suffixes = reader ? reader->mFileExtensions : "";
    return suffixes.substr(0, suffixes.find(' '));
}

const aiScene& readScene(Assimp::Importer& importer, const QString& file, const ReportShare& report)
{
    importer.SetProgressHandler(new ReadingProgress(report)); // the importer takes both over
    auto* const files = new RegularFiles;
    importer.SetIOHandler(files);
    const aiScene* scene = importer.ReadFile(QFile::encodeName(file).toStdString(), steps);
    if (!files->refused().empty()) {
        throw std::runtime_error("it names " + files->refused());
    }
    if (scene && scene->mRootNode) {
        return *scene;
    }
    if (!importer.IsExtensionSupported(QFileInfo(file).suffix().toStdString())) {
        throw std::runtime_error("not a model of a known format");
    }
    const std::string text = importer.GetErrorString();
    const auto known = std::find_if(knownErrors.begin(), knownErrors.end(),
                                    [&](const KnownError& error) { return text.rfind(error.start, 0) == 0; });
    if (known != knownErrors.end()) {
        throw std::runtime_error(known->reason);
    }
    throw std::runtime_error(text.empty() ? text : "damaged: " + text);
}

/// A model on its way from assimp's scene to the writer.
class ModelSender
{
public:
    /// All are borrowed.
    ModelSender(const aiScene& scene, const QString& file, const std::string& format,
                std::uint64_t mostTextureBytes, ModelWriter& out)
        : scene_(scene)
        , format_(format)
        , frame_(FileFrame::of(scene, format))
        , tree_(scene, frame_.toScene())
        , places_(scene, tree_)
        , textures_(scene, file, mostTextureBytes, notes_)
        , materials_(scene, format, textures_)
        , meshes_(materials_, format != "stl") // the facets of an STL file have flat normals only
        , out_(out)
    {}

    void send();

private:
    void sendUses();
    void sendNotes();
    std::optional<std::uint32_t> sendMesh(std::optional<MeshSource> mesh, const SceneTree::Use& use);

    const aiScene& scene_;
    std::string format_;
    FileFrame frame_;
    SceneTree tree_;
    PlaceReckoner places_;
    Notes notes_;
    TextureReader textures_;
    MaterialReader materials_;
    MeshReader meshes_;
    ModelWriter& out_;
};

void ModelSender::send()
{
    out_.frame(frame_.up, places_.origin());
    for (const auto& [key, value] : FileProperties::of(scene_)) {
        out_.property(key, value);
    }
    for (std::size_t i = 1; i < tree_.nodes().size(); ++i) {
        out_.node(tree_.nodes()[i]);
    }
    sendUses();
    sendNotes();
}

/// A mesh that is used once goes where it belongs; one that is used more often goes once, in its own frame.
void ModelSender::sendUses()
{
    const std::vector<std::size_t> counts = tree_.useCounts();
    std::vector<std::optional<std::uint32_t>> shared(counts.size());
    std::vector<bool> sent(counts.size());
    for (const SceneTree::Use& use : tree_.uses()) {
        const aiMesh& mesh = *scene_.mMeshes[use.mesh];
        std::optional<std::uint32_t> number;
        Matrix placement;
        if (counts[use.mesh] == 1) {
            number = sendMesh(meshes_.placed(mesh, places_.placement(use)), use);
        } else {
            if (!sent[use.mesh]) {
                sent[use.mesh] = true;
                shared[use.mesh] = sendMesh(meshes_.centered(mesh, places_.center(use.mesh)), use);
            }
            number = shared[use.mesh];
            placement = places_.centeredPlacement(use);
        }
        if (number) {
            out_.use({use.node, *number, use.name, placement});
        }
    }
}

/// Nothing for a mesh of which nothing is left.
std::optional<std::uint32_t> ModelSender::sendMesh(std::optional<MeshSource> mesh, const SceneTree::Use& use)
{
    if (!mesh) {
        return std::nullopt;
    }
    mesh->name = use.name;
    return out_.mesh(*mesh);
}

void ModelSender::sendNotes()
{
    meshes_.tell(notes_);
    if (const double grain = places_.graininess(); grain > 0.0) {
        notes_.add(QStringLiteral("coordinates are exact to %1 only").arg(QString::number(grain, 'g', 1)));
    }
    for (const QString& line : notes_.lines()) {
        out_.note(line);
    }
}

} // namespace

void ModelReader::read(const QString& file, std::uint64_t mostTextureBytes, ModelWriter& out)
{
    auto importer = std::make_unique<Assimp::Importer>();
    const aiScene& scene = readScene(*importer, file, [&out](float share) { out.share(share); });
    const std::string format = formatOf(*importer);
    if (format != "gltf") {
        importer->ApplyPostProcessing(
            aiProcess_TransformUVCoords); // not as glTF means it: see TextureTransform
    }
    ModelSender(scene, file, format, mostTextureBytes, out).send();
    // Taking a large model apart takes a tenth of the time, for a process that ends next.
    static_cast<void>(importer.release());
}

} // namespace hostkit
