#include "hosts/mesh/ModelParts.h"

#include "contracts/vis/OruVisList.h"

#include <memory>

namespace hostkit {

namespace {

void setEdgesBelow(OruProperties& node, const QString& edges)
{
    for (unsigned int i = 0; i < node.size(); ++i) {
        if (auto* const part = dynamic_cast<MeshVisualization*>(node.at(i))) {
            part->edges.setValue(edges);
        } else {
            setEdgesBelow(*node.at(i), edges);
        }
    }
}

} // namespace

ModelParts::ModelParts(OruVisList& list)
    : list_(list)
{}

void ModelParts::add(const Model& model)
{
    model.visitParts([&](const ModelPart& use) {
        auto part = std::make_unique<MeshVisualization>(list_.group, use.mesh);
        part->rename(freeName(use.shape().name));
        part->setPlacement(use.placement);
        part->setDropListener(dropListener_);
        if (list_.insert(part.get(), false)) {
            static_cast<void>(part.release()); // the tree's from now on
        }
    });
}

void ModelParts::setEdges(const QString& edges)
{
    setEdgesBelow(list_, edges);
}

QString ModelParts::freeName(const QString& name)
{
    QString free = name;
    while (list_.childByName(free)) {
        free = QStringLiteral("%1.%2").arg(name).arg(++nameUses_[name] + 1);
    }
    return free;
}

} // namespace hostkit
