#pragma once

#include "hosts/host/EditStep.h"
#include "hosts/host/SceneWindow.h"

#include <QElapsedTimer>
#include <QPointer>
#include <QUndoCommand>

namespace hostkit {

/// A step on an undo stack. Its changes were made before it is pushed.
class EditCommand : public QUndoCommand
{
public:
    /// `inRow`: joins steps of that sort that come close together. `window` is borrowed; without it the
    /// command does nothing.
    EditCommand(SceneWindow& window, const EditStep& step, bool inRow);

    void undo() override;

    /// The first one, which QUndoStack::push calls, does nothing.
    void redo() override;

    int id() const override { return inRow_ ? rowId : -1; }

    /// Takes over what `other` changed, if it came soon behind. Steps that come to nothing together make this
    /// one obsolete.
    bool mergeWith(const QUndoCommand* other) override;

private:
    using Way = void (HostScene::*)(const EditStep& step);

    static constexpr int rowId = 1;

    void apply(Way way);

    QPointer<SceneWindow> window_;
    EditStep step_;
    bool inRow_;
    bool made_ = true;
    /// Since the last change that it holds.
    QElapsedTimer age_;
};

} // namespace hostkit
