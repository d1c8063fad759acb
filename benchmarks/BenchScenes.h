#pragma once

#include "contracts/math/Matrix.h"
#include "hosts/host/HostScene.h"
#include "hosts/mesh/MeshSource.h"
#include "hosts/mesh/Model.h"

#include <QString>
#include <QStringList>

#include <vector>

namespace bench {

/// The parts of a scene as plain arrays, each in its place.
using Arrays = std::vector<hostkit::MeshSource>;

/// A scene that is measured, by name.
struct Scene
{
    QString name;
    Arrays arrays;
    /// All parts are known to be closed; of a model from a file nobody knows before it was looked at.
    bool closed;
};

/// A closed bumpy sphere of 1,000,000 triangles, spheres on grids of 10 x 10 x 10 and 25 x 20 x 20, an engine
/// from a file, and the same sphere scanned as a cloud of 1,000,000 points.
QStringList sceneNames();

/// These, and spheres on a grid of 50 x 50 x 40, which only some figures are about.
QStringList allSceneNames();

/// `engineFile` is only read for the engine.
Scene makeScene(const QString& name, const QString& engineFile);

/// From center to center of spheres with a radius of about 1: apart from each other, or nearly touching.
constexpr float looseSpacing = 2.5f;
constexpr float denseSpacing = 2.0f;

/// So many spheres of that many triangles on a grid, without gaps in its rows.
Arrays sphereGrid(int columns, int rows, int layers, uint32_t triangles, float spacing = looseSpacing);

/// One gear wheel of a million triangles, with sharp edges along 160 lines of 3,125 pieces each.
Arrays gear();

/// A model as a host makes it of arrays.
hostkit::Model buildModel(Arrays arrays);

/// Shows the model from above, front right, whole and fitting, and paints it once.
void show(hostkit::HostScene& host, const hostkit::Model& model);

/// Magnifies the view about its middle until it holds that share of all vertices.
void magnifyToShare(hostkit::HostScene& host, const hostkit::Model& model, double share);

/// Makes `view` the stored view.
void setView(hostkit::HostScene& host, const Kelvar::Math::Matrix& view);

} // namespace bench
