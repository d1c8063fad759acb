#pragma once

#include "hosts/host/SceneWindow.h"

#include <QPointer>
#include <QString>
#include <QUndoCommand>

namespace hostkit {

/// A node of the property tree that got another name, as a step of an undo stack; it has got it already when
/// the step is pushed. The list that holds it is told by its path. Where the node is gone, or the name is
/// taken, nothing happens.
class RenameCommand : public QUndoCommand
{
public:
    /// `window` is borrowed; without it the command does nothing.
    RenameCommand(SceneWindow& window, const QString& list, const QString& before, const QString& after);

    void undo() override { rename(after_, before_); }
    void redo() override { rename(before_, after_); }

private:
    void rename(const QString& from, const QString& to);

    QPointer<SceneWindow> window_;
    QString list_;
    QString before_;
    QString after_;
};

} // namespace hostkit
