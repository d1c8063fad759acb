#pragma once

#include "contracts/math/DoubleMatrix.h"
#include "contracts/math/Vector3.h"
#include "hosts/import/reader/DoubleBox.h"
#include "hosts/import/reader/SceneTree.h"
#include "hosts/mesh/Origin.h"

#include <vector>

struct aiScene;

namespace hostkit {

/// Reckons in double where the parts of a model go, and what is to be taken off their coordinates so that
/// floats are good enough for the rest.
///
/// A model near 0 keeps its coordinates. One that lies farther away than many times its size has an origin in
/// its middle; a mesh that does so in its own frame has a center.
class PlaceReckoner
{
public:
    /// Both are borrowed.
    PlaceReckoner(const aiScene& scene, const SceneTree& tree);

    const Origin& origin() const { return origin_; }

    /// Of a mesh of the scene; what it is taken off from loses nothing by it.
    Kelvar::Math::Vector3 center(unsigned int mesh) const;

    /// From the frame of a mesh to that of the model, the origin taken off.
    Kelvar::Math::DoubleMatrix placement(const SceneTree::Use& use) const;

    /// The same from a mesh with its center taken off.
    Kelvar::Math::Matrix centeredPlacement(const SceneTree::Use& use) const;

    /// How far floats were apart in which coordinates of the model were read; 0: it does not show.
    double graininess() const;

private:
    DoubleBox boxOf(const SceneTree::Use& use) const;
    void chooseOrigin();

    const SceneTree& tree_;
    std::vector<DoubleBox> meshBoxes_;
    /// Of the whole model.
    DoubleBox box_;
    Origin origin_ = {};
};

} // namespace hostkit
