#include "hosts/widgets/NodeCommand.h"

#include "contracts/core/OruProperties.h"
#include "contracts/core/OruPropertiesFile.h"
#include "hosts/host/HostScene.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

namespace hostkit {

namespace {

/// The file of a list that has just this child.
QByteArray listOf(const OruProperties& child)
{
    QJsonObject file = QJsonDocument::fromJson(OruPropertiesFile::text(child)).object();
    const QString tree = QStringLiteral("tree");
    QJsonObject list;
    list[QStringLiteral("name")] = QStringLiteral("list");
    list[QStringLiteral("children")] = QJsonArray{file[tree]};
    file[tree] = list;
    return QJsonDocument(file).toJson();
}

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
    , content_(listOf(node))
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
    OruProperties* const list = root.find(list_);
    if (!list || list->childByName(name_)) {
        return;
    }
    OruPropertiesFile::load(*list, content_, list_, nullptr);
    if (list->childByName(name_)) {
        moveAhead(*list, std::min(behind_, list->size() - 1));
    }
}

void NodeCommand::remove(OruProperties& root) const
{
    OruProperties* const list = root.find(list_);
    if (list) {
        list->erase(list->childByName(name_));
    }
}

} // namespace hostkit
