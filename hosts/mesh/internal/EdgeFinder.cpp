#include "hosts/mesh/internal/EdgeFinder.h"

#include <algorithm>
#include <cmath>

namespace hostkit {

using Kelvar::Math::Vector3;

namespace {

constexpr float openAngle = 180.0f;
constexpr float degreesPerRadian = 57.2957795f;

/// Cosine of 15 degrees: two edges of a seam lie side by side.
constexpr float leastAlongSeam = 0.966f;
/// Cosine of 10 degrees: normals of a round surface on both sides of an edge.
constexpr float leastAlike = 0.985f;
/// The other side of a seam is looked for at as many vertices, each way.
constexpr int mostSeamSteps = 16;

uint32_t nextCorner(uint32_t corner)
{
    return corner % 3 == 2 ? corner - 2 : corner + 1;
}

uint32_t previousCorner(uint32_t corner)
{
    return corner % 3 == 0 ? corner + 2 : corner - 1;
}

/// The angle between two directions has a cosine, above 0, of that or more. Neither is none.
bool withinCosine(const Vector3& a, const Vector3& b, float cosine)
{
    const float along = dot(a, b);
    return along > 0.0f && along * along >= cosine * cosine * dot(a, a) * dot(b, b);
}

/// Degrees between two directions; 0 if one of them is none, or the angle too small to count.
float angleBetween(const Vector3& a, const Vector3& b)
{
    static const float flat = std::cos(MeshEdges::leastAngle / degreesPerRadian);
    if (dot(a, a) * dot(b, b) == 0.0f || withinCosine(a, b, flat)) {
        return 0.0f;
    }
    return std::atan2(cross(a, b).length(), dot(a, b)) * degreesPerRadian;
}

} // namespace

EdgeFinder::EdgeFinder(const MeshTopology& topology, const Mesh& mesh)
    : topology_(topology)
    , mesh_(mesh)
    , open_(mesh.indices.size())
{}

MeshEdges EdgeFinder::find()
{
    for (uint32_t point = 0; point < topology_.pointCount(); ++point) {
        const auto around = topology_.cornersAt(point);
        for (const uint32_t* first = around.first; first != around.second;) {
            const uint32_t* last = first + 1;
            while (last != around.second && topology_.nextPoint(*last) == topology_.nextPoint(*first)) {
                ++last;
            }
            visit({first, last});
            first = last;
        }
    }
    for (uint32_t corner = 0; corner < open_.size(); ++corner) {
        if (open_[corner]) {
            add(corner, angleOfSingle(corner));
        }
    }
    return sorted();
}

/// All triangles that run along one edge in one direction. Those that run the other way are seen to here,
/// too, or see to these.
void EdgeFinder::visit(const MeshTopology::Corners& along)
{
    const uint32_t corner = *along.first;
    const uint32_t from = topology_.pointOf(corner);
    const uint32_t to = topology_.nextPoint(corner);
    if (mesh_.closed && from > to) {
        return;
    }
    const auto against = topology_.cornersAlong(to, from);
    const auto alike = along.second - along.first;
    const auto opposite = against.second - against.first;
    if (alike + opposite == 1) {
        open_[corner] = true;
    } else if (opposite > 0 && from > to) {
        return;
    } else if (alike + opposite > 2) {
        add(corner, angleOfMany(corner, along, against));
    } else {
        add(corner, angleOfPair(corner, alike == 2 ? along.first[1] : *against.first));
    }
}

void EdgeFinder::add(uint32_t corner, float angle)
{
    if (angle >= MeshEdges::leastAngle) {
        edges_.push_back({mesh_.indices[corner], mesh_.indices[nextCorner(corner)],
                          static_cast<uint16_t>(std::lround(angle * MeshEdges::anglesPerDegree))});
    }
}

MeshEdges EdgeFinder::sorted()
{
    std::stable_sort(edges_.begin(), edges_.end(),
                     [](const Edge& a, const Edge& b) { return a.angle > b.angle; });
    MeshEdges found;
    found.indices.reserve(2 * edges_.size());
    found.angles.reserve(edges_.size());
    for (const Edge& edge : edges_) {
        found.indices.insert(found.indices.end(), {edge.from, edge.to});
        found.angles.push_back(edge.angle);
    }
    return found;
}

/// As long as twice the area of the corner's triangle.
Vector3 EdgeFinder::faceNormal(uint32_t corner) const
{
    const uint32_t* triangle = &mesh_.indices[corner - corner % 3];
    const Vector3& origin = mesh_.positions[triangle[0]];
    return cross(mesh_.positions[triangle[1]] - origin, mesh_.positions[triangle[2]] - origin);
}

/// A triangle that runs along the edge in the same direction lies the other way round.
float EdgeFinder::angleOfPair(uint32_t corner, uint32_t other) const
{
    const bool alike = topology_.pointOf(corner) == topology_.pointOf(other);
    const Vector3 normal = faceNormal(other);
    const uint32_t atStart = alike ? other : nextCorner(other);
    const uint32_t atEnd = alike ? nextCorner(other) : other;
    return unlessRound(angleBetween(faceNormal(corner), alike ? -normal : normal),
                       shadedAlike(corner, atStart) && shadedAlike(nextCorner(corner), atEnd));
}

float EdgeFinder::angleOfMany(uint32_t corner, const MeshTopology::Corners& along,
                              const MeshTopology::Corners& against) const
{
    const Vector3 own = faceNormal(corner);
    float largest = 0.0f;
    const auto compare = [&](uint32_t other) {
        const float angle = angleBetween(own, faceNormal(other));
        largest = std::max(largest, std::min(angle, 180.0f - angle));
    };
    std::for_each(along.first, along.second, compare);
    std::for_each(against.first, against.second, compare);
    return largest;
}

float EdgeFinder::angleOfSingle(uint32_t corner) const
{
    const std::optional<float> atStart = angleOfSeam(corner, true);
    const std::optional<float> atEnd = atStart ? angleOfSeam(corner, false) : std::nullopt;
    return atEnd ? std::max(*atStart, *atEnd) : openAngle;
}

/// The angle to what lies beyond a seam, where that is next found from an open edge on: one side of a seam
/// has vertices that the other side has not. Nothing: this is no seam.
std::optional<float> EdgeFinder::angleOfSeam(uint32_t corner, bool atStart) const
{
    std::optional<uint32_t> edge = corner;
    for (int step = 0; edge && step < mostSeamSteps; ++step) {
        if (const std::optional<uint32_t> other = beyond(*edge, atStart)) {
            const uint32_t here = atStart ? *edge : nextCorner(*edge);
            return unlessRound(angleBetween(faceNormal(here), faceNormal(*other)), shadedAlike(here, *other));
        }
        edge = openNeighbor(*edge, atStart);
    }
    return std::nullopt;
}

/// At one end of an open edge, the corner of a triangle with an open edge beside it that runs the other way.
std::optional<uint32_t> EdgeFinder::beyond(uint32_t corner, bool atStart) const
{
    const uint32_t here = atStart ? corner : nextCorner(corner);
    const auto from = [&](uint32_t to) {
        return mesh_.positions[mesh_.indices[to]] - mesh_.positions[mesh_.indices[here]];
    };
    const Vector3 own = from(atStart ? nextCorner(corner) : corner);
    const auto around = topology_.cornersAt(topology_.pointOf(here));
    const auto* const found = std::find_if(around.first, around.second, [&](uint32_t other) {
        const uint32_t edge = atStart ? previousCorner(other) : other;
        return edge != corner && open_[edge] &&
               withinCosine(from(atStart ? edge : nextCorner(other)), own, leastAlongSeam);
    });
    return found == around.second ? std::nullopt : std::make_optional(*found);
}

/// The open edge that ends where one starts, or starts where it ends. Nothing: there is none, or a choice.
std::optional<uint32_t> EdgeFinder::openNeighbor(uint32_t corner, bool atStart) const
{
    const auto around = topology_.cornersAt(topology_.pointOf(atStart ? corner : nextCorner(corner)));
    std::optional<uint32_t> found;
    for (const uint32_t* other = around.first; other != around.second; ++other) {
        const uint32_t edge = atStart ? previousCorner(*other) : *other;
        if (open_[edge]) {
            if (found) {
                return std::nullopt;
            }
            found = edge;
        }
    }
    return found;
}

/// The angle, or none where given normals shade the surface as round.
float EdgeFinder::unlessRound(float angle, bool round) const
{
    return mesh_.normalsGiven && round && angle < sharpestRound ? 0.0f : angle;
}

bool EdgeFinder::shadedAlike(uint32_t corner, uint32_t other) const
{
    return std::abs(dot(mesh_.normals[mesh_.indices[corner]], mesh_.normals[mesh_.indices[other]])) >
           leastAlike;
}

} // namespace hostkit
