#pragma once

#include "contracts/math/DoubleMatrix.h"
#include "contracts/math/Vector3.h"
#include "hosts/import/reader/MaterialReader.h"
#include "hosts/import/reader/Notes.h"
#include "hosts/mesh/MeshSource.h"

#include <array>
#include <cstddef>
#include <optional>
#include <vector>

struct aiMesh;

namespace hostkit {

/// Copies of assimp's meshes.
///
/// Triangles, lines and points with a corner that is not there or no finite place are left out.
class MeshReader
{
public:
    /// `materials` is borrowed. Without `withNormals` those of the file do not count.
    MeshReader(MaterialReader& materials, bool withNormals)
        : materials_(materials)
        , withNormals_(withNormals)
    {}

    /// The mesh with its places gone through `place`. Nothing when nothing of it is left.
    std::optional<MeshSource> placed(const aiMesh& mesh, const Kelvar::Math::DoubleMatrix& place);

    /// The mesh in its own frame, `center` taken off all places.
    std::optional<MeshSource> centered(const aiMesh& mesh, const Kelvar::Math::Vector3& center);

    /// Tells what was left out.
    void tell(Notes& notes) const;

private:
    struct Count
    {
        std::size_t all = 0;
        std::size_t dropped = 0;
    };

    bool finish(const aiMesh& mesh, bool mirrored, MeshSource& source);
    void copyIndices(const aiMesh& mesh, bool mirrored, MeshSource& source);
    void copyLook(const aiMesh& mesh, MeshSource& source);

    MaterialReader& materials_;
    bool withNormals_;
    /// By Primitive.
    std::array<Count, 3> counts_;
};

} // namespace hostkit
