#pragma once

namespace hostkit {

struct Mesh;

/// Whether a surface encloses a volume, cracks aside.
///
/// By the divergence theorem the volume within a closed surface is the integral over it of a coordinate times
/// that component of the normal, for each of the three axes. Where ends are missing, the three differ; and so
/// do the sums of the mixed terms and of the areas from 0.
struct SolidCheck
{
    static bool passes(const Mesh& mesh);
};

} // namespace hostkit
