#pragma once

#include "contracts/math/Vector3.h"
#include "hosts/mesh/kelvar_mesh_api.h"

#include <cstdint>
#include <vector>

namespace hostkit {

/// An indexed triangle mesh in model coordinates: one normal a position, three indices a triangle,
/// counter-clockwise seen from outside.
struct SampleMesh
{
    std::vector<Kelvar::Math::Vector3> positions;
    std::vector<Kelvar::Math::Vector3> normals;
    std::vector<uint32_t> indices;
};

/// A closed sphere about the origin with a wavy surface: its distance from the origin lies within 5 % of
/// `radius`. The same arguments give the same mesh on every machine with the same mathematics library.
///
/// A closed mesh has an even number of triangles: the result has the largest count not above `triangles` that
/// a well-shaped grid gives: exactly the asked one for 100, 500, 1,000,000 and many more, and never less
/// than 6.
KELVAR_MESH_API SampleMesh bumpySphere(uint32_t triangles, float radius = 1.0F);

} // namespace hostkit
