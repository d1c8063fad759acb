#include "hosts/widgets/UndoEditor.h"

#include "hosts/host/EditStep.h"
#include "hosts/widgets/internal/EditCommand.h"

#include <QEvent>

#include <boost/make_shared.hpp>

namespace hostkit {

constexpr int keptViews = 200;

UndoEditor::UndoEditor(SceneWindow& window, QObject* parent)
    : QObject(parent)
    , window_(&window)
{
    views_.setUndoLimit(keptViews);
    connect(&window, &SceneWindow::sceneRenewed, this, [this] { install(); });
    window.installEventFilter(this);
    install();
}

/// The scene goes on with its own editor.
UndoEditor::~UndoEditor()
{
    recorder_->setListener({});
    if (window_ && window_->hasScene() && window_->host().scene().render.editor() == recorder_) {
        window_->host().scene().render.setCustomEditor({});
    }
}

void UndoEditor::clear()
{
    edits_.clear();
    views_.clear();
}

/// Each scene gets a recorder of its own: a session that the former scene left open must not keep those of
/// the next one from ending.
void UndoEditor::install()
{
    if (!window_->hasScene()) {
        return;
    }
    recorder_ = boost::make_shared<EditRecorder>();
    recorder_->setListener(
        [this](EditRecorder::Subject subject, const EditStep& step) { keep(subject, step); });
    window_->host().scene().render.setCustomEditor(recorder_);
}

void UndoEditor::keep(EditRecorder::Subject subject, const EditStep& step)
{
    const bool view = subject == EditRecorder::Subject::View;
    const bool inRow = view && window_->input().zooming();
    (view ? views_ : edits_).push(new EditCommand(*window_, step, inRow));
}

/// An override that is accepted reaches the scene as a key.
bool UndoEditor::eventFilter(QObject* watched, QEvent* event)
{
    const bool asks = event->type() == QEvent::ShortcutOverride && window_ && window_->hasScene();
    if (asks && window_->input().gesture()) {
        event->accept();
        return true;
    }
    return QObject::eventFilter(watched, event);
}

} // namespace hostkit
