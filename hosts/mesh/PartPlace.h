#pragma once

#include "contracts/math/DoubleMatrix.h"
#include "hosts/mesh/Origin.h"
#include "hosts/mesh/Point.h"
#include "hosts/mesh/kelvar_mesh_api.h"

#include <optional>
#include <utility>

class OruProperties;

namespace hostkit {

class ModelList;
class PartVisualization;

/// Where parts of models are in their scene, and what the models call that place.
struct KELVAR_MESH_API PartPlace
{
    /// Two opposite corners, the smaller numbers first.
    using Box = std::pair<Point, Point>;

    /// The model that a node is in; null: none.
    static const ModelList* modelOf(const OruProperties& node);

    /// From the frame of the part's shape to that of the scene.
    static Kelvar::Math::DoubleMatrix inScene(const PartVisualization& part);

    /// The least box in the scene that holds the shape as the part shows it; that of a turned part is smaller
    /// than the one round its turned box. Looks at each position of the shape.
    static Box boxInScene(const PartVisualization& part);

    /// What is to be added to coordinates of the scene to get those of the models beside `node`, or else
    /// beside the nodes above it; of several models the first one's. All 0 without models.
    static Origin originBeside(const OruProperties& node);
};

} // namespace hostkit
