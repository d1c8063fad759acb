#include "hosts/widgets/SceneWidget.h"

#include <QKeyEvent>
#include <QVBoxLayout>

namespace hostkit {

SceneWidget::SceneWidget(QWidget* parent)
    : QWidget(parent)
    , window_(new SceneWindow)
    , container_(createWindowContainer(window_, this))
    , undo_(new UndoEditor(*window_, this))
{
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(container_);
    setFocusProxy(container_);
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    window_->installEventFilter(this);
}

SceneWidget::~SceneWidget() = default;

void SceneWidget::setContent(const SceneWindow::Content& content)
{
    window_->setContent(content);
    undo_->clear();
}

QSize SceneWidget::sizeHint() const
{
    return {640, 480};
}

QSize SceneWidget::minimumSizeHint() const
{
    return {64, 64};
}

/// The window knows nothing of the widgets around it, so its Tab keys are taken from it.
bool SceneWidget::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::KeyPress) {
        const auto* const key = static_cast<QKeyEvent*>(event);
        const bool plain = !(key->modifiers() & (Qt::ControlModifier | Qt::AltModifier));
        const bool back = key->key() == Qt::Key_Backtab;
        if (plain && (back || key->key() == Qt::Key_Tab) && passFocus(!back)) {
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

/// Gives the keyboard to the next widget that takes it by Tab. False: there is none.
bool SceneWidget::passFocus(bool forwards)
{
    const auto neighbour = [&](const QWidget* widget) {
        return forwards ? widget->nextInFocusChain() : widget->previousInFocusChain();
    };
    for (QWidget* next = neighbour(container_); next != container_; next = neighbour(next)) {
        const bool takes = (next->focusPolicy() & Qt::TabFocus) && !next->focusProxy();
        if (takes && next->isVisible() && next->isEnabled() && next->window() == QWidget::window()) {
            next->activateWindow(); // the keyboard is with the native window of the scene
            next->setFocus(forwards ? Qt::TabFocusReason : Qt::BacktabFocusReason);
            return true;
        }
    }
    return false;
}

} // namespace hostkit
