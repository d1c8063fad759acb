#include "hosts/mesh/SampleMeshes.h"

#include <algorithm>
#include <cmath>

namespace hostkit {

namespace {

using Kelvar::Math::Vector3;

constexpr double pi = 3.14159265358979323846;

/// Rings of `segments` vertices each between two poles: 2 * rings * segments triangles.
struct Grid
{
    uint32_t rings = 1;
    uint32_t segments = 3;

    uint32_t triangles() const { return 2 * rings * segments; }
    uint32_t southPole() const { return 1 + rings * segments; }
    uint32_t vertex(uint32_t ring, uint32_t segment) const
    {
        return 1 + ring * segments + segment % segments;
    }
};

/// Of all grids with cells of a sane shape the fullest one; of several the one with the squarest cells.
Grid gridFor(uint32_t triangles)
{
    const uint32_t half = triangles / 2;
    const auto squarest = static_cast<uint32_t>(std::sqrt(half / 2.0));
    Grid best;
    for (uint32_t step = 0; step <= squarest / 3; ++step) {
        for (const uint32_t rings : {squarest - step, squarest + step}) {
            const Grid grid{std::max(rings, 1U), half / std::max(rings, 1U)};
            if (grid.segments >= 3 && grid.triangles() > best.triangles()) {
                best = grid;
            }
        }
    }
    return best;
}

Vector3 bumpyPoint(double polar, double azimuth, double radius)
{
    const double x = std::sin(polar) * std::cos(azimuth);
    const double y = std::sin(polar) * std::sin(azimuth);
    const double z = std::cos(polar);
    const double r =
        radius * (1.0 + 0.05 * std::sin(9.0 * x) * std::sin(8.0 * y + 1.0) * std::sin(7.0 * z + 2.0));
    return {static_cast<float>(r * x), static_cast<float>(r * y), static_cast<float>(r * z)};
}

std::vector<Vector3> pointsOf(const Grid& grid, double radius)
{
    std::vector<Vector3> points;
    points.reserve(grid.southPole() + 1);
    points.push_back(bumpyPoint(0.0, 0.0, radius));
    for (uint32_t ring = 0; ring < grid.rings; ++ring) {
        for (uint32_t segment = 0; segment < grid.segments; ++segment) {
            points.push_back(
                bumpyPoint(pi * (ring + 1) / (grid.rings + 1), 2.0 * pi * segment / grid.segments, radius));
        }
    }
    points.push_back(bumpyPoint(pi, 0.0, radius));
    return points;
}

std::vector<uint32_t> indicesOf(const Grid& grid)
{
    std::vector<uint32_t> indices;
    indices.reserve(3 * std::size_t{grid.triangles()});
    const auto triangle = [&indices](uint32_t a, uint32_t b, uint32_t c) {
        indices.insert(indices.end(), {a, b, c});
    };
    for (uint32_t s = 0; s < grid.segments; ++s) {
        triangle(0, grid.vertex(0, s), grid.vertex(0, s + 1));
    }
    for (uint32_t r = 0; r + 1 < grid.rings; ++r) {
        for (uint32_t s = 0; s < grid.segments; ++s) {
            triangle(grid.vertex(r, s), grid.vertex(r + 1, s), grid.vertex(r + 1, s + 1));
            triangle(grid.vertex(r, s), grid.vertex(r + 1, s + 1), grid.vertex(r, s + 1));
        }
    }
    const uint32_t last = grid.rings - 1;
    for (uint32_t s = 0; s < grid.segments; ++s) {
        triangle(grid.vertex(last, s), grid.southPole(), grid.vertex(last, s + 1));
    }
    return indices;
}

/// The mean of the adjoining faces' normals, weighted by their areas.
std::vector<Vector3> normalsOf(const std::vector<Vector3>& positions, const std::vector<uint32_t>& indices)
{
    std::vector<Vector3> normals(positions.size());
    for (std::size_t i = 0; i < indices.size(); i += 3) {
        const Vector3& origin = positions[indices[i]];
        const Vector3 face = cross(positions[indices[i + 1]] - origin, positions[indices[i + 2]] - origin);
        for (std::size_t corner = i; corner < i + 3; ++corner) {
            normals[indices[corner]] += face;
        }
    }
    for (Vector3& normal : normals) {
        normal = normal.normalized();
    }
    return normals;
}

} // namespace

SampleMesh bumpySphere(uint32_t triangles, float radius)
{
    const Grid grid = gridFor(triangles);
    SampleMesh mesh;
    mesh.positions = pointsOf(grid, radius);
    mesh.indices = indicesOf(grid);
    mesh.normals = normalsOf(mesh.positions, mesh.indices);
    return mesh;
}

} // namespace hostkit
