#include "hosts/viewer/window/ViewerActions.h"

#include "hosts/viewer/window/Workplace.h"
#include "hosts/widgets/SceneWidget.h"

#include <QAction>
#include <QKeySequence>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QToolBar>

ViewerActions::ViewerActions(QMainWindow& window, Workplace& place)
    : QObject(&window)
    , place_(place)
{
    QToolBar* const bar = window.addToolBar(tr("Toolbar"));
    bar->setObjectName(QStringLiteral("toolbar"));
    bar->setToolButtonStyle(Qt::ToolButtonTextOnly);
    for (const ActionTable::Row& row : ActionTable::rows()) {
        add(window, *bar, row);
    }
    refresh();
}

void ViewerActions::add(QMainWindow& window, QToolBar& bar, const ActionTable::Row& row)
{
    QMenu*& menu = menus_[QString::fromLatin1(row.menu)];
    if (!menu) {
        menu = window.menuBar()->addMenu(QString::fromLatin1(row.menu));
    }
    if (row.first) {
        menu->addSeparator();
    }
    QAction* const action = menu->addAction(QString::fromLatin1(row.text));
    action->setObjectName(QString::fromLatin1(row.name));
    action->setShortcut(QKeySequence(QString::fromLatin1(row.keys)));
    action->setStatusTip(QString::fromLatin1(row.help));
    action->setToolTip(QStringLiteral("%1 (%2)").arg(QLatin1String(row.help), QLatin1String(row.keys)));
    action->setCheckable(row.on != nullptr);
    if (*row.button) {
        action->setIconText(QString::fromLatin1(row.button));
        bar.addAction(action);
    }
    connect(action, &QAction::triggered, this, [this, &row] { run(row); });
    actions_.emplace_back(&row, action);
    byName_.insert(action->objectName(), action);
}

/// Not while a button is held in the view: what is just being made cannot be taken back yet.
void ViewerActions::run(const ActionTable::Row& row)
{
    hostkit::SceneWindow& view = place_.view.window();
    if (!view.hasScene() || !view.input().gesture()) {
        row.run(place_);
    }
    refresh();
}

void ViewerActions::refresh()
{
    for (const auto& [row, action] : actions_) {
        action->setEnabled(!row->enabled || row->enabled(place_));
        action->setChecked(row->on && row->on(place_));
    }
    const auto named = [](const QString& what, const QString& step) {
        return step.isEmpty() ? what : QStringLiteral("%1 %2").arg(what, step);
    };
    const QUndoStack& edits = place_.view.undo().edits();
    action(QStringLiteral("undo"))->setText(named(tr("&Undo"), edits.undoText()));
    action(QStringLiteral("redo"))->setText(named(tr("&Redo"), edits.redoText()));
}
