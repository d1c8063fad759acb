#include "hosts/widgets/NodeCommand.h"

#include "contracts/core/OruProperties.h"
#include "contracts/core/OruPropertiesFile.h"
#include "hosts/host/HostScene.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

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

/// The name of the child that stands behind another; empty: none does.
QString nameBehind(const OruProperties& list, const OruProperties& child)
{
    const auto place = static_cast<unsigned int>(list.index(&child)) + 1;
    return place < list.size() && list.at(place) ? list.at(place)->name() : QString();
}

/// The last child comes to stand ahead of another. The list has no order to choose: those that stand behind
/// go out and come in again.
void moveAhead(OruProperties& list, const OruProperties& other)
{
    const auto place = static_cast<unsigned int>(list.index(&other));
    for (unsigned int behind = list.size() - 1 - place; behind > 0; --behind) {
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
        nextName_ = nameBehind(*node.parent(), node);
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

void NodeCommand::apply(Way way)
{
    if (window_) {
        window_->changeAndTell([&](HostScene& host) {
            way == Insert ? insert(host.scene()) : remove(host.scene());
            host.changed();
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
    const OruProperties* const next = nextName_.isEmpty() ? nullptr : list->childByName(nextName_);
    if (next && list->childByName(name_)) {
        moveAhead(*list, *next);
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
