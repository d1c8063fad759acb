#pragma once

#include "hosts/import/kelvar_import_api.h"
#include "hosts/mesh/Model.h"
#include "hosts/mesh/Progress.h"

#include <QString>

#include <stdexcept>

namespace hostkit {

/// Reads a model from a file of any format that the assimp library knows: glTF, STL, OBJ, PLY, COLLADA and
/// more.
///
/// The nodes of the file that hold parts are those of the model. Each use of a mesh becomes a part; uses of
/// one mesh share it. The result's Z axis points up: the model is turned from the axis that the file names,
/// or else the one that programs use which write its format, see Model::up. A model that lies far from 0 is
/// brought near to it, see Model::origin.
///
/// Normals are those of the file, or worked out where it has none and for STL, whose facets have no others
/// than flat ones. Materials give a color, what alpha means and a texture, whose picture is read from the
/// model or from a file near it: PNG, JPEG, BMP, TGA and others that Qt's plugins read. What is missing or
/// damaged and not needed is left out and told in Model::notes. Lines and points are left out.
class KELVAR_IMPORT_API ModelImporter
{
public:
    /// A file that cannot be shown; what() is "FILE: reason", the reason one line of 300 characters at most.
    /// An empty reason becomes "damaged".
    struct KELVAR_IMPORT_API Error : std::runtime_error
    {
        Error(const QString& file, const QString& reason);
    };

    /// Reads `file`. Throws Error, or Progress::Cancelled soon after `progress` was cancelled. Needs neither
    /// an OpenGL context nor the main thread.
    static Model load(const QString& file, Progress& progress);
};

} // namespace hostkit
