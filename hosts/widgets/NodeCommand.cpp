#include "hosts/widgets/NodeCommand.h"

#include "contracts/core/OruProperties.h"
#include "contracts/core/OruPropertiesFile.h"
#include "contracts/vis/OruVisList.h"
#include "hosts/host/HostScene.h"

#include <algorithm>

namespace hostkit {

namespace {

/// The list has no order to choose: those that stand behind go out and come in again.
void moveAhead(OruProperties& list, unsigned int behind)
{
    const unsigned int place = list.size() - 1 - behind;
    for (unsigned int i = 0; i < behind; ++i) {
        OruProperties* const sibling = list.at(place);
        const bool member = sibling->isMember();
        list.remove(sibling);
        list.insert(sibling, member);
    }
}

} // namespace

NodeCommand::NodeCommand(SceneWindow& window, Way way, const QString& list, const OruProperties& node,
                         QUndoCommand* parent)
    : QUndoCommand((way == Insert ? QStringLiteral("Add %1") : QStringLiteral("Delete %1")).arg(node.name()),
                   parent)
    , window_(&window)
    , way_(way)
    , list_(list)
    , name_(node.name())
    , type_(node.type())
    , content_(OruPropertiesFile::text(node))
{
    if (way == Remove && node.parent()) {
        const OruProperties& siblings = *node.parent();
        behind_ = siblings.size() - 1 - static_cast<unsigned int>(siblings.index(&node));
    }
}

void NodeCommand::undo()
{
    apply(way_ == Insert ? Remove : Insert);
}

void NodeCommand::redo()
{
    apply(way_);
}

/// What lies under the pointer may be another thing then.
void NodeCommand::apply(Way way)
{
    if (window_) {
        window_->runAndTell([&](HostScene& host) {
            way == Insert ? insert(host.scene()) : remove(host.scene());
            host.changed();
            window_->input().hoverAgain();
            return true;
        });
    }
}

void NodeCommand::insert(OruProperties& root) const
{
    auto* const list = dynamic_cast<OruVisList*>(root.find(list_));
    if (!list || list->childByName(name_)) {
        return;
    }
    OruVisualization& node = list->child(name_, type_);
    OruPropertiesFile::load(node, content_, name_, nullptr);
    moveAhead(*list, std::min(behind_, list->size() - 1));
}

void NodeCommand::remove(OruProperties& root) const
{
    OruProperties* const list = root.find(list_);
    OruProperties* const node = list ? list->childByName(name_) : nullptr;
    if (node && node->type() == type_) {
        list->erase(node);
    }
}

} // namespace hostkit
