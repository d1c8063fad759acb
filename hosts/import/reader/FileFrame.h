#pragma once

#include "contracts/math/Matrix.h"
#include "hosts/mesh/UpAxis.h"

#include <string>

struct aiScene;

namespace hostkit {

/// Which way up a model lies in its file, and in what assimp makes of it.
///
/// The file's word counts, where its format has one; else it is as the programs do it that usually write the
/// format.
struct FileFrame
{
    /// `format` is the first suffix that assimp gives the reader which read `scene`.
    static FileFrame of(const aiScene& scene, const std::string& format);

    /// From assimp's frame to one with Z upwards.
    Kelvar::Math::Matrix toScene() const;

    /// In the file.
    UpAxis up;

    /// assimp has turned it so that Y points up.
    bool turned = false;
};

} // namespace hostkit
