#include "hosts/mesh/internal/SolidCheck.h"

#include "hosts/mesh/Mesh.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace hostkit {

namespace {

using Kelvar::Math::Vector3;
using Triple = std::array<double, 3>;

/// Cracks, and ends of other parts that reach a little way in, change the sums by less.
constexpr double tolerance = 0.02;

Triple relative(const Vector3& point, const Vector3& origin)
{
    return {static_cast<double>(point.x) - static_cast<double>(origin.x),
            static_cast<double>(point.y) - static_cast<double>(origin.y),
            static_cast<double>(point.z) - static_cast<double>(origin.z)};
}

/// Half the cross product of two sides: normal times area.
Triple areaOf(const Triple& a, const Triple& b, const Triple& c)
{
    const Triple u = {b[0] - a[0], b[1] - a[1], b[2] - a[2]};
    const Triple v = {c[0] - a[0], c[1] - a[1], c[2] - a[2]};
    return {(u[1] * v[2] - u[2] * v[1]) / 2.0, (u[2] * v[0] - u[0] * v[2]) / 2.0,
            (u[0] * v[1] - u[1] * v[0]) / 2.0};
}

/// The integrals of coordinate i times component j of the normal, of the normal, and of 1.
struct Sums
{
    double moment[3][3] = {};
    Triple normal = {};
    double area = 0.0;

    void add(const Triple& a, const Triple& b, const Triple& c)
    {
        const Triple part = areaOf(a, b, c);
        for (std::size_t i = 0; i < 3; ++i) {
            const double middle = (a[i] + b[i] + c[i]) / 3.0;
            for (std::size_t j = 0; j < 3; ++j) {
                moment[i][j] += middle * part[j];
            }
            normal[i] += part[i];
        }
        area += std::sqrt(part[0] * part[0] + part[1] * part[1] + part[2] * part[2]);
    }
};

Sums sumsOf(const Mesh& mesh)
{
    const Vector3 origin = mesh.bounds.center();
    Sums sums;
    for (std::size_t i = 0; i + 2 < mesh.indices.size(); i += 3) {
        sums.add(relative(mesh.positions[mesh.indices[i]], origin),
                 relative(mesh.positions[mesh.indices[i + 1]], origin),
                 relative(mesh.positions[mesh.indices[i + 2]], origin));
    }
    return sums;
}

} // namespace

bool SolidCheck::passes(const Mesh& mesh)
{
    const Sums sums = sumsOf(mesh);
    const double volume = (sums.moment[0][0] + sums.moment[1][1] + sums.moment[2][2]) / 3.0;
    if (!(volume > 0.0)) {
        return false;
    }
    double worst = 0.0;
    for (std::size_t i = 0; i < 3; ++i) {
        for (std::size_t j = 0; j < 3; ++j) {
            worst = std::max(worst, std::abs(sums.moment[i][j] - (i == j ? volume : 0.0)) / volume);
        }
        worst = std::max(worst, std::abs(sums.normal[i]) / sums.area);
    }
    return worst < tolerance;
}

} // namespace hostkit
