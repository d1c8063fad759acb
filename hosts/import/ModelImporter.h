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
/// Each use of a mesh in the file becomes a part of its own with the place baked in. The result's Z axis
/// points up: a model of a format that defines Y as up (glTF, COLLADA, X3D, VRML) is turned, any other stays
/// as it is. Normals are those of the file, or worked out where it has none and for STL, whose facets have no
/// others than flat ones. Materials give a color; textures, lines and points are left out.
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
