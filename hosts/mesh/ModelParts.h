#pragma once

#include "hosts/mesh/MeshVisualization.h"
#include "hosts/mesh/Model.h"
#include "hosts/mesh/kelvar_mesh_api.h"

#include <QHash>
#include <QString>

#include <memory>
#include <unordered_map>

class OruVisList;

namespace hostkit {

class PartBuffer;

/// Puts models into a list of visualizations: each as a ModelList of its own, the nodes of its file as lists
/// in that one, and the parts in these.
///
///     ModelParts parts(host.scene().render.visualizations);
///     parts.add(ModelImporter::load("car.glb", progress));
///     host.changed();
///     host.setValue("render/visualization/car/wheels/visible", "false", &error);
///
/// Names are unique within their list: one that is taken gets a number, as in "bolt", "bolt.2". Parts that
/// use one mesh share it, and what it is drawn from, too.
class KELVAR_MESH_API ModelParts
{
public:
    /// `list` is borrowed.
    explicit ModelParts(OruVisList& list);
    ~ModelParts();

    /// Adds the model and returns its list, which the tree owns like all that is in it. The first model of a
    /// list decides what all of them take off their coordinates.
    ///
    /// A model without a name gets no list of its own: its content goes straight into the list that models
    /// are put into, which is returned, and no origin is looked at.
    OruVisList& add(const Model& model);

    /// Writes MeshVisualization::edges of all parts of the list, and of lists within it.
    void setEdges(const QString& edges);

    /// Who hears of parts that are dropped on others; for parts that are added from now on.
    void setDropListener(const MeshVisualization::DropListener& listener) { dropListener_ = listener; }

private:
    /// The names of one list.
    class Names
    {
    public:
        explicit Names(OruVisList& list)
            : list_(list)
        {}

        /// `wanted` with '_' for each '/', and with a number behind it where that is taken.
        QString available(const QString& wanted);

    private:
        OruVisList& list_;
        /// For each name that was taken, the last number behind it.
        QHash<QString, int> numbers_;
    };

    const Origin& sceneOrigin(const Model& first) const;
    void fill(OruVisList& list, Names& names, const ModelNode& node);
    std::unique_ptr<PartVisualization> made(OruVisList& list, const ModelPart& use);

    OruVisList& list_;
    Names names_;
    MeshVisualization::DropListener dropListener_;
    std::unordered_map<const Shape*, std::weak_ptr<PartBuffer>> buffers_;
};

} // namespace hostkit
