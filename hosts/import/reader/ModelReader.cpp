#include "hosts/import/reader/ModelReader.h"

#include "contracts/math/Matrix.h"
#include "contracts/math/Vector3.h"
#include "hosts/import/reader/RegularFiles.h"

#include <QFile>
#include <QFileInfo>

#include <assimp/Importer.hpp>
#include <assimp/ProgressHandler.hpp>
#include <assimp/config.h>
#include <assimp/postprocess.h>
#include <assimp/scene.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <string>
#include <vector>

namespace hostkit {

using Kelvar::Math::Matrix;
using Kelvar::Math::Vector3;

namespace {

constexpr std::array<const char*, 6> suffixesWithYUp = {"glb", "gltf", "dae", "x3d", "x3db", "wrl"};

/// Errors of assimp, by how they start, that read better in other words.
struct KnownError
{
    const char* start;
    const char* reason;
};

constexpr std::array<KnownError, 2> knownErrors = {{
    {"No suitable reader", "damaged: it does not hold what a file of its name should"},
    {"No meshes remaining", "there are no triangles"},
}};

/// One use of a mesh: the mesh and its place in the model.
struct Use
{
    const aiMesh* mesh;
    const aiNode* node;
    Matrix place;
};

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

/// assimp's matrices map column vectors, ours row vectors.
Matrix matrixOf(const aiMatrix4x4& m)
{
    const float rows[16] = {m.a1, m.b1, m.c1, m.d1, m.a2, m.b2, m.c2, m.d2,
                            m.a3, m.b3, m.c3, m.d3, m.a4, m.b4, m.c4, m.d4};
    return Matrix::fromRows(rows);
}

bool isMirror(const Matrix& m)
{
    const Vector3 x(m(0, 0), m(0, 1), m(0, 2));
    const Vector3 y(m(1, 0), m(1, 1), m(1, 2));
    const Vector3 z(m(2, 0), m(2, 1), m(2, 2));
    return dot(cross(x, y), z) < 0.0f;
}

/// Normals go through the transpose of the inverse, so that they stay upright under uneven scales.
Matrix normalMatrix(const Matrix& place)
{
    const Matrix inverse = place.inverse();
    Matrix result;
    for (int row = 0; row < 3; ++row) {
        for (int col = 0; col < 3; ++col) {
            result(row, col) = inverse(col, row);
        }
    }
    return result;
}

QColor colorOf(const aiMaterial& material)
{
    aiColor4D color(0.6f, 0.6f, 0.6f, 1.0f);
    if (material.Get(AI_MATKEY_BASE_COLOR, color) != AI_SUCCESS) {
        material.Get(AI_MATKEY_COLOR_DIFFUSE, color);
    }
    const auto clamped = [](float value) { return value > 0.0f ? std::min(value, 1.0f) : 0.0f; };
    return QColor::fromRgbF(clamped(color.r), clamped(color.g), clamped(color.b));
}

uint32_t packed(const aiColor4D& color)
{
    const float channels[4] = {color.r, color.g, color.b, 1.0f};
    unsigned char bytes[4];
    for (int i = 0; i < 4; ++i) {
        const float value = channels[i] > 0.0f ? std::min(channels[i], 1.0f) : 0.0f;
        bytes[i] = static_cast<unsigned char>(std::lround(value * 255.0f));
    }
    uint32_t result = 0;
    std::memcpy(&result, bytes, sizeof(result));
    return result;
}

/// Names are steps of a path in the property tree. Empty when the file gives none.
QString partName(const Use& use)
{
    QString name = QString::fromUtf8(use.mesh->mName.C_Str()).trimmed();
    if (name.isEmpty()) {
        name = QString::fromUtf8(use.node->mName.C_Str()).trimmed();
    }
    return name.replace(QLatin1Char('/'), QLatin1Char('_'));
}

void collectUses(const aiScene& scene, const aiNode& node, const Matrix& above, std::vector<Use>& uses)
{
    const Matrix place = matrixOf(node.mTransformation) * above;
    for (unsigned int i = 0; i < node.mNumMeshes; ++i) {
        const aiMesh* mesh = scene.mMeshes[node.mMeshes[i]];
        if (mesh->mPrimitiveTypes & aiPrimitiveType_TRIANGLE) {
            uses.push_back(Use{mesh, &node, place});
        }
    }
    for (unsigned int i = 0; i < node.mNumChildren; ++i) {
        collectUses(scene, *node.mChildren[i], place, uses);
    }
}

void copyVertices(const aiMesh& mesh, const Matrix& place, bool withNormals, MeshSource& source)
{
    const auto vector = [](const aiVector3D& v) { return Vector3(v.x, v.y, v.z); };
    const bool moved = place != Matrix();
    source.positions.resize(mesh.mNumVertices);
    std::transform(mesh.mVertices, mesh.mVertices + mesh.mNumVertices, source.positions.begin(),
                   [&](const aiVector3D& v) { return moved ? place.transform(vector(v)) : vector(v); });
    if (withNormals && mesh.HasNormals()) {
        const Matrix turn = normalMatrix(place);
        source.normals.resize(mesh.mNumVertices);
        std::transform(mesh.mNormals, mesh.mNormals + mesh.mNumVertices, source.normals.begin(),
                       [&](const aiVector3D& v) { return turn.transformDirection(vector(v)).normalized(); });
    }
    if (mesh.HasVertexColors(0)) {
        source.colors.resize(mesh.mNumVertices);
        std::transform(mesh.mColors[0], mesh.mColors[0] + mesh.mNumVertices, source.colors.begin(), packed);
    }
}

void copyTriangles(const aiMesh& mesh, bool mirrored, MeshSource& source)
{
    source.indices.reserve(3 * static_cast<std::size_t>(mesh.mNumFaces));
    for (unsigned int i = 0; i < mesh.mNumFaces; ++i) {
        const aiFace& face = mesh.mFaces[i];
        if (face.mNumIndices == 3) {
            const unsigned int* at = face.mIndices;
            source.indices.insert(source.indices.end(), {at[0], at[mirrored ? 2 : 1], at[mirrored ? 1 : 2]});
        }
    }
}

MeshSource sourceOf(const aiScene& scene, const Use& use, bool withNormals)
{
    MeshSource source;
    source.name = partName(use);
    source.material.color = colorOf(*scene.mMaterials[use.mesh->mMaterialIndex]);
    copyVertices(*use.mesh, use.place, withNormals, source);
    copyTriangles(*use.mesh, isMirror(use.place), source);
    return source;
}

const aiScene& readScene(Assimp::Importer& importer, const QString& file, const ReportShare& report)
{
    importer.SetPropertyInteger(AI_CONFIG_PP_SBP_REMOVE, aiPrimitiveType_POINT | aiPrimitiveType_LINE);
    importer.SetProgressHandler(new ReadingProgress(report)); // the importer takes both over
    auto* const files = new RegularFiles;
    importer.SetIOHandler(files);
    const aiScene* scene = importer.ReadFile(QFile::encodeName(file).toStdString(),
                                             aiProcess_Triangulate | aiProcess_SortByPType);
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

} // namespace

void ModelReader::read(const QString& file, const ReportShare& report, const TakePart& take)
{
    Assimp::Importer importer;
    const aiScene& scene = readScene(importer, file, report);
    const QString suffix = QFileInfo(file).suffix().toLower();
    const bool turn = std::any_of(suffixesWithYUp.begin(), suffixesWithYUp.end(),
                                  [&](const char* known) { return suffix == QLatin1String(known); });
    std::vector<Use> uses;
    collectUses(scene, *scene.mRootNode, turn ? Matrix::rotate(Kelvar::Math::VectorX, 90.0f) : Matrix(),
                uses);
    for (const Use& use : uses) {
        take(sourceOf(scene, use, suffix != QLatin1String("stl")));
    }
}

} // namespace hostkit
