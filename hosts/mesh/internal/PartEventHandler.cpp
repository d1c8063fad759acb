#include "hosts/mesh/internal/PartEventHandler.h"

#include "contracts/core/OruProperties.h"
#include "contracts/core/OruStringBuilder.h"
#include "contracts/core/OruText.h"
#include "contracts/vis/IOruVisPropertyEdit.h"
#include "contracts/vis/OruVisHitRecord.h"
#include "contracts/vis/OruVisList.h"
#include "contracts/vis/OruVisualization.h"
#include "hosts/mesh/PartVisualization.h"

namespace hostkit {

namespace {

/// The name of the object below `node` that bears a hit name; empty when there is none.
QString nameBelow(const OruProperties& node, unsigned int hitName)
{
    QString name;
    for (unsigned int i = 0; i < node.size() && name.isEmpty(); ++i) {
        if (const OruProperties* child = node.at(i)) {
            const auto* visualization = dynamic_cast<const OruVisualization*>(child);
            const bool bearsIt = visualization && visualization->hitProperties.contains(hitName);
            name = bearsIt ? child->name() : nameBelow(*child, hitName);
        }
    }
    return name;
}

const OruProperties& rootAbove(const OruProperties& node)
{
    const OruProperties* root = &node;
    while (root->parent()) {
        root = root->parent();
    }
    return *root;
}

} // namespace

bool PartEventHandler::OnHoverEnter(const OruVisHitRecord&, const OruStringBuilder& builder, QString& tooltip)
{
    const PartVisualization::Content content = part_.content();
    tooltip = part_.name() + QLatin1Char('\n') + builder.line(content.unit, builder.number(content.count));
    return true;
}

bool PartEventHandler::OnHoverLeave(const OruVisHitRecord&, const OruStringBuilder&, QString& tooltip)
{
    const bool shown = !tooltip.isEmpty();
    tooltip.clear();
    return shown;
}

bool PartEventHandler::OnDrag(const OruVisHitRecord&, QPoint delta)
{
    if (!part_.movable.value()) {
        return false;
    }
    part_.moveBy(delta);
    return true;
}

bool PartEventHandler::OnRelease(const OruVisHitRecord&, IOruVisPropertyEdit* editor)
{
    return part_.endMove(editor);
}

bool PartEventHandler::OnDrop(const OruVisHitRecord&, const OruVisHitRecord& target, IOruVisPropertyEdit*)
{
    // A press on a part that stays where it is turned the view; nothing was let go.
    if (part_.carried() && part_.dropListener()) {
        part_.dropListener()(part_.name(), nameBelow(rootAbove(part_), target.name));
    }
    return false;
}

bool PartEventHandler::OnClick(const OruVisHitRecord&, IOruVisPropertyEdit* editor)
{
    editor->editValue(dynamic_cast<OruVisList*>(part_.parent()), &part_, part_.marked.name(),
                      oru::toString(!part_.marked.value()));
    return true;
}

} // namespace hostkit
