#pragma once

#include "hosts/mesh/MeshVisualization.h"
#include "hosts/mesh/Model.h"
#include "hosts/mesh/kelvar_mesh_api.h"

#include <QHash>
#include <QString>

class OruVisList;

namespace hostkit {

/// Puts the parts of models into a list of visualizations, each under a name of its own.
///
///     ModelParts parts(host.scene().render.visualizations);
///     parts.add(ModelImporter::load(file, progress));
///     host.changed();
class KELVAR_MESH_API ModelParts
{
public:
    /// `list` is borrowed.
    explicit ModelParts(OruVisList& list);

    /// Adds a part for each mesh of the model; the list owns the parts, the meshes are shared. A part whose
    /// name is taken gets a number: "body", "body.2".
    void add(const Model& model);

    /// Writes MeshVisualization::edges of all parts of the list, and of lists within it.
    void setEdges(const QString& edges);

    /// Who hears of parts that are dropped on others; for parts that are added from now on.
    void setDropListener(const MeshVisualization::DropListener& listener) { dropListener_ = listener; }

private:
    QString freeName(const QString& name);

    OruVisList& list_;
    MeshVisualization::DropListener dropListener_;
    /// For each name that was wanted, how often.
    QHash<QString, int> nameUses_;
};

} // namespace hostkit
