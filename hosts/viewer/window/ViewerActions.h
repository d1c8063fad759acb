#pragma once

#include "hosts/viewer/window/ActionTable.h"

#include <QHash>
#include <QObject>
#include <QString>

#include <utility>
#include <vector>

class QAction;
class QMainWindow;
class QMenu;
class QToolBar;
struct Workplace;

/// The rows of ActionTable as menus and a toolbar of a window.
class ViewerActions : public QObject
{
    Q_OBJECT

public:
    /// Both are borrowed; the window owns what is made.
    ViewerActions(QMainWindow& window, Workplace& place);

    /// Brings what can be done, and what is on, up to date.
    void refresh();

    /// The action of that row, and the menu of that text; null: there is none.
    QAction* action(const QString& name) const { return byName_.value(name); }
    QMenu* menu(const QString& text) const { return menus_.value(text); }

private:
    void add(QMainWindow& window, QToolBar& bar, const ActionTable::Row& row);
    void run(const ActionTable::Row& row);

    Workplace& place_;
    std::vector<std::pair<const ActionTable::Row*, QAction*>> actions_;
    QHash<QString, QAction*> byName_;
    QHash<QString, QMenu*> menus_;
};
