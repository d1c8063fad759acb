#pragma once

#include "hosts/host/EditRecorder.h"
#include "hosts/host/SceneWindow.h"
#include "hosts/widgets/kelvar_widgets_api.h"

#include <QObject>
#include <QPointer>
#include <QUndoStack>

#include <boost/shared_ptr.hpp>

namespace hostkit {

/// The editor of a window's scene that keeps what was changed on two undo stacks.
///
///     menu.addAction(view.undo().edits().createUndoAction(&main));
///     menu.addAction(view.undo().views().createUndoAction(&main, "View"));
///
/// Each edit session is one step, whoever made it: a drag, a panel, HostScene::setValue. Views have a stack
/// of their own, so that undoing an edit never turns the view, and the last views can be stepped through.
/// What a wheel or two fingers do to the view in a row is one step. A step that finds its node gone leaves
/// that out.
///
/// While a button of the pointer is held in the window, the keyboard is the scene's, so that no shortcut
/// takes back what is just being made.
class KELVAR_WIDGETS_API UndoEditor : public QObject
{
    Q_OBJECT

public:
    /// Installs itself as the editor of the window's scene, and again whenever the window makes a new one.
    /// `window` is borrowed; it may end first.
    explicit UndoEditor(SceneWindow& window, QObject* parent = nullptr);
    ~UndoEditor() override;

    /// The changes of values.
    QUndoStack& edits() { return edits_; }

    /// The changes of views: the last 200.
    QUndoStack& views() { return views_; }

    /// Forgets all steps.
    void clear();

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void install();
    void keep(EditRecorder::Subject subject, const EditStep& step);

    QPointer<SceneWindow> window_;
    boost::shared_ptr<EditRecorder> recorder_;
    QUndoStack edits_;
    QUndoStack views_;
};

} // namespace hostkit
