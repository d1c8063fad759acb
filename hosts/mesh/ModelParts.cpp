#include "hosts/mesh/ModelParts.h"

#include "contracts/vis/OruVisList.h"
#include "hosts/mesh/LineVisualization.h"
#include "hosts/mesh/ModelList.h"
#include "hosts/mesh/PartList.h"
#include "hosts/mesh/PointVisualization.h"

#include <memory>
#include <stdexcept>
#include <utility>
#include <variant>

namespace hostkit {

namespace {

std::unique_ptr<PartVisualization> makePart(OruModifiedGroup& group, const std::shared_ptr<const Mesh>& mesh)
{
    return std::make_unique<MeshVisualization>(group, mesh);
}

std::unique_ptr<PartVisualization> makePart(OruModifiedGroup& group,
                                            const std::shared_ptr<const LineSet>& lines)
{
    return std::make_unique<LineVisualization>(group, lines);
}

std::unique_ptr<PartVisualization> makePart(OruModifiedGroup& group,
                                            const std::shared_ptr<const PointSet>& points)
{
    return std::make_unique<PointVisualization>(group, points);
}

std::unique_ptr<PartVisualization> visualizationOf(const ModelPart& part, OruModifiedGroup& group)
{
    return std::visit([&](const auto& shape) { return makePart(group, shape); }, part.content);
}

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

/// Gives an entry to a list, which owns it from then on.
template <typename Entry>
Entry& give(OruVisList& list, std::unique_ptr<Entry> entry)
{
    if (!list.insert(entry.get(), false)) {
        throw std::invalid_argument("no name for a part: \"" + entry->name().toStdString() + "\"");
    }
    return *entry.release();
}

} // namespace

ModelParts::ModelParts(OruVisList& list)
    : list_(list)
    , names_(list)
{}

ModelParts::~ModelParts() = default;

void ModelParts::setEdges(const QString& edges)
{
    setEdgesBelow(list_, edges);
}

OruVisList& ModelParts::add(const Model& model)
{
    if (model.name.isEmpty()) {
        fill(list_, names_, model);
        return list_;
    }
    auto made = std::make_unique<ModelList>(list_.group, model, sceneOrigin(model));
    made->rename(names_.available(model.name));
    Names names(*made);
    fill(*made, names, model);
    return give(list_, std::move(made));
}

/// That of the models which are there; `first` decides where there is none.
const Origin& ModelParts::sceneOrigin(const Model& first) const
{
    for (unsigned int i = 0; i < list_.size(); ++i) {
        if (const auto* const present = dynamic_cast<const ModelList*>(list_.at(i))) {
            return present->sceneOrigin();
        }
    }
    return first.origin;
}

void ModelParts::fill(OruVisList& list, Names& names, const ModelNode& node)
{
    if (node.parts.size() > buffers_.size()) {
        buffers_.reserve(buffers_.size() + node.parts.size());
    }
    for (const ModelPart& use : node.parts) {
        auto part = made(list, use);
        part->rename(names.available(use.name.isEmpty() ? use.shape().name : use.name));
        give(list, std::move(part));
    }
    for (const ModelNode& child : node.children) {
        if (child.name.isEmpty()) {
            fill(list, names, child);
            continue;
        }
        auto below = std::make_unique<PartList>(list.group, names.available(child.name));
        Names namesBelow(*below);
        fill(*below, namesBelow, child);
        give(list, std::move(below));
    }
}

std::unique_ptr<PartVisualization> ModelParts::made(OruVisList& list, const ModelPart& use)
{
    std::unique_ptr<PartVisualization> part = visualizationOf(use, list.group);
    part->setPlacement(use.placement);
    part->setDropListener(dropListener_);
    std::weak_ptr<PartBuffer>& known = buffers_[&use.shape()];
    if (const std::shared_ptr<PartBuffer> shared = known.lock()) {
        part->setBuffer(shared);
    } else {
        known = part->buffer();
    }
    return part;
}

QString ModelParts::Names::available(const QString& wanted)
{
    const QString step = QString(wanted).replace(QLatin1Char('/'), QLatin1Char('_'));
    QString name = step;
    while (list_.childByName(name)) {
        name = QStringLiteral("%1.%2").arg(step).arg(++numbers_[step] + 1);
    }
    return name;
}

} // namespace hostkit
