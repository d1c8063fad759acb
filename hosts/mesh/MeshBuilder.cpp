#include "hosts/mesh/MeshBuilder.h"

#include "contracts/math/BoundingBox.h"
#include "contracts/math/Vector3.h"
#include "hosts/mesh/internal/Extremes.h"
#include "hosts/mesh/internal/FaceSide.h"
#include "hosts/mesh/internal/IndexCheck.h"
#include "hosts/mesh/internal/MeshTopology.h"
#include "hosts/mesh/internal/PointWelder.h"
#include "hosts/mesh/internal/SourceCheck.h"
#include "hosts/mesh/internal/SurfaceScan.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <future>
#include <utility>
#include <vector>

namespace hostkit {

using Kelvar::Math::BoundingBox;
using Kelvar::Math::Vector3;

namespace {

/// Where more triangles meet in one place, all are shaded as one surface: the tip of a fan of thousands would
/// cost the square of their number.
constexpr std::ptrdiff_t mostCreasedCorners = 64;
/// Vertices of one place are looked through this far back for an equal one.
constexpr std::size_t mostComparedVertices = 16;
/// With fewer, a thread of its own costs more than it saves.
constexpr std::size_t leastIndicesForThread = 3 * 16384;

/// As Vector3::normalized, in line and without care for the extremes: this runs for every corner.
Vector3 unit(const Vector3& v)
{
    const float square = dot(v, v);
    return square > 1e-30f && square < 1e30f ? v * (1.0f / std::sqrt(square)) : v.normalized();
}

float cosine(float degrees)
{
    return std::cos(degrees * 3.14159265f / 180.0f);
}

bool hasBadNormal(const std::vector<Vector3>& normals)
{
    return std::any_of(normals.begin(), normals.end(),
                       [](const Vector3& normal) { return unit(normal) == Vector3(); });
}

/// Of finite positions, at least one.
BoundingBox boundsOf(const std::vector<Vector3>& positions)
{
    Vector3 low = positions.front();
    Vector3 high = low;
    for (const Vector3& position : positions) {
        low = least(low, position);
        high = most(high, position);
    }
    return {low, high};
}

bool isBroken(const TexturePoint& point)
{
    return !std::isfinite(point.s) || !std::isfinite(point.t);
}

/// One mesh in the making.
class MeshWork
{
public:
    MeshWork(MeshSource source, const ReportShare& report);

    /// Null when no triangle is left.
    std::shared_ptr<const Mesh> run();

private:
    bool keepSource();
    bool bringNormalsToLength1();
    bool buildAnew();
    void finish(SurfaceScan scan, bool watertight);
    void buildTopology();
    void buildFaceNormals();
    void findTurned();
    void buildVertices();
    void buildVerticesAt(uint32_t point);
    /// The one normal of a place where no two triangles make a crease; zero where they may.
    Vector3 roundNormalAt(uint32_t point) const;
    Vector3 normalAt(uint32_t corner) const;
    uint32_t vertexFor(uint32_t corner, const Vector3& normal, std::size_t firstAtPoint);

    MeshSource source_;
    ReportShare report_;
    MeshTopology topology_;
    /// For each triangle its normal, as long as twice its area: worked out where the source has none.
    std::vector<Vector3> faceNormals_;
    /// For each triangle whether its given normals are those of its other side.
    std::vector<bool> turned_;
    std::shared_ptr<Mesh> mesh_;
};

MeshWork::MeshWork(MeshSource source, const ReportShare& report)
    : source_(std::move(source))
    , report_(report)
    , topology_({}, 0)
    , mesh_(std::make_shared<Mesh>())
{
    mesh_->name = std::move(source_.name);
    mesh_->material = std::move(source_.material);
    if (!mesh_->material.texture || source_.texturePoints.size() != source_.positions.size()) {
        source_.texturePoints.clear();
    }
    std::replace_if(source_.texturePoints.begin(), source_.texturePoints.end(), isBroken, TexturePoint());
}

std::shared_ptr<const Mesh> MeshWork::run()
{
    checkSource(source_);
    if (!keepSource() && !buildAnew()) {
        return nullptr;
    }
    report_(1.0f);
    return mesh_;
}

/// Where nothing is to be mended, the arrays of the source become those of the mesh: building them anew would
/// give the same ones. False: there is something, and the source is as good as before.
bool MeshWork::keepSource()
{
    const std::vector<Vector3>& positions = source_.positions;
    const std::vector<uint32_t>& indices = source_.indices;
    const auto vertices = static_cast<uint32_t>(positions.size());
    const bool whole = !indices.empty() && indices.size() % 3 == 0 && source_.normals.size() == vertices &&
                       vertices < 0x80000000u;
    if (!whole || !allUsed(indices, vertices) || !PointWelder::allApart(positions)) {
        return false;
    }
    report_(0.2f);
    const auto policy = indices.size() < leastIndicesForThread ? std::launch::deferred
                                                               : std::launch::async | std::launch::deferred;
    std::future<bool> paired = std::async(policy, [&] { return allPaired(indices, vertices); });
    const BoundingBox bounds = boundsOf(positions);
    SurfaceScan scan(positions, source_.normals, indices, bounds.center());
    const bool clean = !scan.turned && !scan.collapsed && bringNormalsToLength1();
    if (clean) {
        const bool watertight = paired.get();
        mesh_->bounds = bounds;
        mesh_->positions = std::move(source_.positions);
        mesh_->normals = std::move(source_.normals);
        mesh_->colors = std::move(source_.colors);
        mesh_->texturePoints = std::move(source_.texturePoints);
        mesh_->indices = std::move(source_.indices);
        mesh_->normalsGiven = true;
        finish(std::move(scan), watertight);
    }
    return clean;
}

/// False when one is no direction: then none of them counts.
bool MeshWork::bringNormalsToLength1()
{
    bool good = true;
    for (Vector3& normal : source_.normals) {
        normal = unit(normal);
        good &= normal != Vector3();
    }
    return good;
}

/// False when no triangle is left.
bool MeshWork::buildAnew()
{
    buildTopology();
    if (source_.indices.empty()) {
        return false;
    }
    report_(0.4f);
    buildVertices();
    report_(0.8f);
    mesh_->normalsGiven = !source_.normals.empty();
    mesh_->bounds = boundsOf(mesh_->positions);
    finish(SurfaceScan(mesh_->positions, {}, mesh_->indices, mesh_->bounds.center()), topology_.watertight());
    return true;
}

void MeshWork::finish(SurfaceScan scan, bool watertight)
{
    mesh_->closed = watertight && scan.volume > 0.0;
    mesh_->runs = std::move(scan.runs);
}

void MeshWork::buildTopology()
{
    const std::vector<uint32_t> points = PointWelder::weld(source_.positions);
    std::vector<uint32_t> corners;
    corners.reserve(source_.indices.size());
    std::size_t kept = 0;
    for (std::size_t at = 0; at + 2 < source_.indices.size(); at += 3) {
        const uint32_t* triangle = &source_.indices[at];
        const uint32_t a = points[triangle[0]];
        const uint32_t b = points[triangle[1]];
        const uint32_t c = points[triangle[2]];
        if (a == b || b == c || c == a) {
            continue;
        }
        corners.insert(corners.end(), {a, b, c});
        std::copy(triangle, triangle + 3, source_.indices.begin() + kept);
        kept += 3;
    }
    source_.indices.resize(kept);
    topology_ = MeshTopology(std::move(corners), PointWelder::countOf(points));
}

void MeshWork::buildFaceNormals()
{
    faceNormals_.resize(source_.indices.size() / 3);
    for (std::size_t face = 0; face < faceNormals_.size(); ++face) {
        const Vector3& a = source_.positions[source_.indices[3 * face]];
        const Vector3& b = source_.positions[source_.indices[3 * face + 1]];
        const Vector3& c = source_.positions[source_.indices[3 * face + 2]];
        faceNormals_[face] = cross(b - a, c - a);
    }
}

void MeshWork::buildVertices()
{
    if (source_.normals.empty() || hasBadNormal(source_.normals)) {
        source_.normals.clear();
        buildFaceNormals();
    } else {
        findTurned();
    }
    mesh_->indices.resize(source_.indices.size());
    mesh_->positions.reserve(topology_.pointCount());
    mesh_->normals.reserve(topology_.pointCount());
    for (uint32_t point = 0; point < topology_.pointCount(); ++point) {
        if (point % 65536 == 0) {
            report_(0.4f + 0.3f * static_cast<float>(point) / static_cast<float>(topology_.pointCount()));
        }
        buildVerticesAt(point);
    }
}

void MeshWork::buildVerticesAt(uint32_t point)
{
    const std::size_t firstAtPoint = mesh_->positions.size();
    const auto corners = topology_.cornersAt(point);
    const Vector3 round = source_.normals.empty() ? roundNormalAt(point) : Vector3();
    for (const uint32_t* corner = corners.first; corner != corners.second; ++corner) {
        const Vector3 normal = round != Vector3() ? round : normalAt(*corner);
        mesh_->indices[*corner] = vertexFor(*corner, normal, firstAtPoint);
    }
}

uint32_t MeshWork::vertexFor(uint32_t corner, const Vector3& normal, std::size_t firstAtPoint)
{
    const uint32_t old = source_.indices[corner];
    const bool colored = !source_.colors.empty();
    const bool textured = !source_.texturePoints.empty();
    std::size_t vertex = mesh_->positions.size();
    const std::size_t last = vertex > mostComparedVertices ? vertex - mostComparedVertices : 0;
    while (vertex > std::max(firstAtPoint, last)) {
        --vertex;
        if (mesh_->normals[vertex] == normal && (!colored || mesh_->colors[vertex] == source_.colors[old]) &&
            (!textured || mesh_->texturePoints[vertex] == source_.texturePoints[old])) {
            return static_cast<uint32_t>(vertex);
        }
    }
    mesh_->positions.push_back(source_.positions[old]);
    mesh_->normals.push_back(normal);
    if (colored) {
        mesh_->colors.push_back(source_.colors[old]);
    }
    if (textured) {
        mesh_->texturePoints.push_back(source_.texturePoints[old]);
    }
    return static_cast<uint32_t>(mesh_->positions.size() - 1);
}

Vector3 MeshWork::roundNormalAt(uint32_t point) const
{
    static const float halfCrease = cosine(MeshBuilder::creaseAngle / 2.0f);
    const auto corners = topology_.cornersAt(point);
    Vector3 sum;
    for (const uint32_t* corner = corners.first; corner != corners.second; ++corner) {
        sum += faceNormals_[*corner / 3];
    }
    const Vector3 normal = unit(sum);
    const bool many = corners.second - corners.first > mostCreasedCorners;
    const bool round = std::all_of(corners.first, corners.second, [&](uint32_t corner) {
        const Vector3& face = faceNormals_[corner / 3];
        const float along = dot(normal, face);
        return along >= 0.0f && along * along >= halfCrease * halfCrease * dot(face, face);
    });
    return many || round ? normal : Vector3();
}

Vector3 MeshWork::normalAt(uint32_t corner) const
{
    if (!source_.normals.empty()) {
        const Vector3 normal = unit(source_.normals[source_.indices[corner]]);
        return turned_[corner / 3] ? -normal : normal;
    }
    static const float crease = cosine(MeshBuilder::creaseAngle);
    const Vector3& own = faceNormals_[corner / 3];
    const float ownSquare = dot(own, own);
    const auto corners = topology_.cornersAt(topology_.pointOf(corner));
    Vector3 sum;
    for (const uint32_t* other = corners.first; other != corners.second; ++other) {
        const Vector3& face = faceNormals_[*other / 3];
        const float along = dot(own, face);
        if (ownSquare == 0.0f ||
            (along > 0.0f && along * along > crease * crease * ownSquare * dot(face, face))) {
            sum += face;
        }
    }
    const Vector3 normal = unit(sum);
    // Triangles without area have no side of their own; any unit vector will do.
    return normal == Vector3() ? Kelvar::Math::VectorZ : normal;
}

/// Finds the triangles whose given normals point to the side from which they are seen clockwise. Drawing
/// takes the order of the corners at its word: with such normals it would light them from behind.
void MeshWork::findTurned()
{
    turned_.resize(source_.indices.size() / 3);
    for (std::size_t face = 0; face < turned_.size(); ++face) {
        turned_[face] = isTurned(source_.positions, source_.normals, &source_.indices[3 * face]);
    }
}

} // namespace

std::shared_ptr<const Mesh> MeshBuilder::build(MeshSource source, const ReportShare& report)
{
    return MeshWork(std::move(source), report).run();
}

} // namespace hostkit
