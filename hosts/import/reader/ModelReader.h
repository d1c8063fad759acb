#pragma once

#include "hosts/mesh/MeshSource.h"
#include "hosts/mesh/Progress.h"

#include <QString>

#include <functional>

namespace hostkit {

/// Reads a model file by the assimp library.
///
/// Some of that library's readers crash or never end on damaged files: IsolatedReader is the one to use.
class ModelReader
{
public:
    using TakePart = std::function<void(MeshSource)>;

    /// Hands out each use of a mesh as a part of its own, the place baked in, the Z axis up: see
    /// ModelImporter. A part without a name has an empty one. Throws std::runtime_error with the reason.
    static void read(const QString& file, const ReportShare& report, const TakePart& take);
};

} // namespace hostkit
