#include "hosts/import/reader/MeshReader.h"

#include "contracts/math/Matrix.h"

#include <QLocale>

#include <assimp/mesh.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <utility>

namespace hostkit {

using Kelvar::Math::DoubleMatrix;
using Kelvar::Math::Matrix;
using Kelvar::Math::Vector3;

namespace {

/// In the order of Primitive.
constexpr std::array<const char*, 3> primitiveWords = {"triangles", "lines", "points"};
constexpr std::array<unsigned int, 3> cornerCounts = {3, 2, 1};

Vector3 vectorOf(const aiVector3D& v)
{
    return {v.x, v.y, v.z};
}

/// The steps of assimp leave one kind in a mesh; one without any is a cloud of points.
Primitive primitiveOf(const aiMesh& mesh)
{
    return mesh.mPrimitiveTypes & aiPrimitiveType_TRIANGLE ? Primitive::Triangles
           : mesh.mPrimitiveTypes & aiPrimitiveType_LINE   ? Primitive::Lines
                                                           : Primitive::Points;
}

/// A part of every image, before a division by w. In line: this runs for every vertex.
double component(const aiVector3D& v, const DoubleMatrix& place, int column)
{
    const auto& m = place.m;
    return static_cast<double>(v.x) * m[0][column] + static_cast<double>(v.y) * m[1][column] +
           static_cast<double>(v.z) * m[2][column] + m[3][column];
}

Vector3 imageOf(const aiVector3D& v, const DoubleMatrix& place)
{
    const double w = component(v, place, 3);
    return {static_cast<float>(component(v, place, 0) / w), static_cast<float>(component(v, place, 1) / w),
            static_cast<float>(component(v, place, 2) / w)};
}

/// Normals go through the transpose of the inverse, so that they stay upright under uneven scales.
Matrix normalMatrix(const DoubleMatrix& place)
{
    const Matrix inverse = place.toMatrix().inverse();
    Matrix result;
    for (int row = 0; row < 3; ++row) {
        for (int col = 0; col < 3; ++col) {
            result(row, col) = inverse(col, row);
        }
    }
    return result;
}

std::uint32_t packed(const aiColor4D& color, bool withAlpha)
{
    const float channels[4] = {color.r, color.g, color.b, withAlpha ? color.a : 1.0f};
    unsigned char bytes[4];
    for (int i = 0; i < 4; ++i) {
        const float value = channels[i] > 0.0f ? std::min(channels[i], 1.0f) : 0.0f;
        bytes[i] = static_cast<unsigned char>(std::lround(value * 255.0f));
    }
    std::uint32_t result = 0;
    std::memcpy(&result, bytes, sizeof(result));
    return result;
}

/// Some formats have their triangles clockwise seen from outside. Normals show it: with these on the side
/// from which a surface is not seen, it would be lit from behind.
void turnTowardsNormals(MeshSource& source)
{
    std::size_t along = 0;
    std::size_t against = 0;
    for (std::size_t at = 0; at + 2 < source.indices.size(); at += 3) {
        const std::uint32_t* const corners = &source.indices[at];
        const Vector3& a = source.positions[corners[0]];
        const Vector3 face = cross(source.positions[corners[1]] - a, source.positions[corners[2]] - a);
        const float side = dot(face, source.normals[corners[0]]);
        along += side > 0.0f ? 1 : 0;
        against += side < 0.0f ? 1 : 0;
    }
    constexpr std::size_t clearMajority = 3;
    if (against > clearMajority * along) {
        for (std::size_t at = 0; at + 2 < source.indices.size(); at += 3) {
            std::swap(source.indices[at + 1], source.indices[at + 2]);
        }
    }
}

/// Some vertices are not opaque, but some can be seen.
bool hasAlpha(const aiMesh& mesh)
{
    const aiColor4D* const colors = mesh.mColors[0];
    const auto [least, most] = std::minmax_element(
        colors, colors + mesh.mNumVertices, [](const aiColor4D& a, const aiColor4D& b) { return a.a < b.a; });
    return least->a < 1.0f && most->a > 0.0f;
}

float finiteOr0(float value)
{
    return std::isfinite(value) ? value : 0.0f;
}

} // namespace

std::optional<MeshSource> MeshReader::placed(const aiMesh& mesh, const DoubleMatrix& place)
{
    MeshSource source;
    const bool moved = place.toMatrix() != Matrix();
    source.positions.reserve(mesh.mNumVertices);
    std::transform(mesh.mVertices, mesh.mVertices + mesh.mNumVertices, std::back_inserter(source.positions),
                   [&](const aiVector3D& v) { return moved ? imageOf(v, place) : vectorOf(v); });
    if (withNormals_ && mesh.HasNormals()) {
        const Matrix turn = normalMatrix(place);
        source.normals.reserve(mesh.mNumVertices);
        std::transform(
            mesh.mNormals, mesh.mNormals + mesh.mNumVertices, std::back_inserter(source.normals),
            [&](const aiVector3D& v) { return moved ? turn.transformDirection(vectorOf(v)) : vectorOf(v); });
    }
    const bool left = finish(mesh, place.determinant3x3() < 0.0, source);
    return left ? std::make_optional(std::move(source)) : std::nullopt;
}

std::optional<MeshSource> MeshReader::centered(const aiMesh& mesh, const Vector3& center)
{
    MeshSource source;
    source.positions.reserve(mesh.mNumVertices);
    std::transform(mesh.mVertices, mesh.mVertices + mesh.mNumVertices, std::back_inserter(source.positions),
                   [&](const aiVector3D& v) { return vectorOf(v) - center; });
    if (withNormals_ && mesh.HasNormals()) {
        source.normals.reserve(mesh.mNumVertices);
        std::transform(mesh.mNormals, mesh.mNormals + mesh.mNumVertices, std::back_inserter(source.normals),
                       vectorOf);
    }
    const bool left = finish(mesh, false, source);
    return left ? std::make_optional(std::move(source)) : std::nullopt;
}

/// What does not depend on the place. False: no triangle, line or point is left.
bool MeshReader::finish(const aiMesh& mesh, bool mirrored, MeshSource& source)
{
    source.primitive = primitiveOf(mesh);
    copyIndices(mesh, mirrored, source);
    if (source.indices.empty()) {
        return false;
    }
    if (source.primitive == Primitive::Triangles && !source.normals.empty()) {
        turnTowardsNormals(source);
    }
    copyLook(mesh, source);
    // Nothing uses them any more.
    std::replace_if(
        source.positions.begin(), source.positions.end(), [](const Vector3& p) { return !p.isFinite(); },
        Vector3());
    return true;
}

void MeshReader::copyIndices(const aiMesh& mesh, bool mirrored, MeshSource& source)
{
    const auto kind = static_cast<std::size_t>(source.primitive);
    const unsigned int corners = cornerCounts[kind];
    const bool allFinite = std::all_of(source.positions.begin(), source.positions.end(),
                                       [](const Vector3& p) { return p.isFinite(); });
    const auto good = [&](unsigned int vertex) {
        return vertex < source.positions.size() && (allFinite || source.positions[vertex].isFinite());
    };
    const auto take = [&](const unsigned int* at) {
        ++counts_[kind].all;
        if (!std::all_of(at, at + corners, good)) {
            ++counts_[kind].dropped;
            return;
        }
        source.indices.insert(source.indices.end(), at, at + corners);
        if (mirrored && corners == 3) {
            std::swap(source.indices.end()[-1], source.indices.end()[-2]);
        }
    };
    source.indices.reserve(corners * static_cast<std::size_t>(mesh.mNumFaces));
    for (unsigned int i = 0; i < mesh.mNumFaces; ++i) {
        if (mesh.mFaces[i].mNumIndices == corners) {
            take(mesh.mFaces[i].mIndices);
        }
    }
    if (mesh.mNumFaces == 0) {
        for (unsigned int vertex = 0; vertex < mesh.mNumVertices; ++vertex) {
            take(&vertex);
        }
    }
}

void MeshReader::copyLook(const aiMesh& mesh, MeshSource& source)
{
    const MaterialReader::Entry& look = materials_.entry(mesh.mMaterialIndex);
    source.material = look.material;
    if (mesh.HasVertexColors(0)) {
        if (!look.alphaGiven && hasAlpha(mesh)) {
            source.material.alpha = Material::Alpha::Blend;
        }
        const bool withAlpha = source.material.alpha != Material::Alpha::Opaque;
        source.colors.reserve(mesh.mNumVertices);
        std::transform(mesh.mColors[0], mesh.mColors[0] + mesh.mNumVertices,
                       std::back_inserter(source.colors),
                       [&](const aiColor4D& color) { return packed(color, withAlpha); });
    }
    if (!look.material.texture) {
        return;
    }
    if (!mesh.HasTextureCoords(look.channel)) {
        source.material.texture = nullptr;
        return;
    }
    const aiVector3D* const points = mesh.mTextureCoords[look.channel];
    source.texturePoints.reserve(mesh.mNumVertices);
    std::transform(points, points + mesh.mNumVertices, std::back_inserter(source.texturePoints),
                   [&](const aiVector3D& p) {
                       const TexturePoint point = look.transform(TexturePoint{p.x, p.y});
                       return TexturePoint{finiteOr0(point.s), finiteOr0(point.t)};
                   });
}

void MeshReader::tell(Notes& notes) const
{
    const QLocale words(QLocale::English);
    for (std::size_t kind = 0; kind < counts_.size(); ++kind) {
        const Count& count = counts_[kind];
        if (count.dropped > 0) {
            notes.add(QStringLiteral("dropped %1 of %2 %3: their places are missing or not finite")
                          .arg(words.toString(static_cast<qulonglong>(count.dropped)),
                               words.toString(static_cast<qulonglong>(count.all)),
                               QLatin1String(primitiveWords[kind])));
        }
    }
}

} // namespace hostkit
