#pragma once

#include "hosts/host/SceneWindow.h"
#include "hosts/widgets/kelvar_widgets_api.h"

#include <QByteArray>
#include <QPointer>
#include <QString>
#include <QUndoCommand>

class OruProperties;

namespace hostkit {

/// A node that comes into a list of the property tree, or goes out of it, as a step of an undo stack.
///
///     view.undo().edits().push(new NodeCommand(view.window(), NodeCommand::Insert, list.path(), node));
///
/// The node is told by its name and its content, and the list by its path, so that the step also fits a tree
/// that was made anew. The list has to be one that makes nodes of that type, as for a file. What was taken
/// out comes back to its place among its siblings. Where the list or the node is gone, or the name is taken,
/// nothing happens.
class KELVAR_WIDGETS_API NodeCommand : public QUndoCommand
{
public:
    enum Way
    {
        /// A copy of the node, with all below it, at the end of the list.
        Insert,
        /// The list's child of that name.
        Remove
    };

    /// `window` is borrowed; without it the command does nothing. `list` is a path from the root, and `node`
    /// only read. With a `parent` it is a piece of that command, which owns it.
    NodeCommand(SceneWindow& window, Way way, const QString& list, const OruProperties& node,
                QUndoCommand* parent = nullptr);

    void undo() override;
    void redo() override;

private:
    void apply(Way way);
    void insert(OruProperties& root) const;
    void remove(OruProperties& root) const;

    QPointer<SceneWindow> window_;
    Way way_;
    QString list_;
    QString name_;
    /// A file of the list with this node alone.
    QByteArray content_;
    /// The sibling that follows it; empty: it is the last.
    QString nextName_;
};

} // namespace hostkit
