// The panels in docks beside the view, and a person's hands on them.

#include "contracts/vis/OruVisViewpoint.h"
#include "hosts/host/SceneViews.h"
#include "hosts/widgets/PropertyPanel.h"
#include "hosts/widgets/ViewsPanel.h"
#include "tests/widgets/WidgetsFixture.h"

#include <QAction>
#include <QApplication>
#include <QDockWidget>
#include <QLineEdit>
#include <QListWidget>
#include <QToolButton>
#include <QTreeView>

using namespace hostkit;
using namespace kelvartest;
using Kelvar::Math::Matrix;

namespace {

struct PanelsGL : WidgetsFixture
{
    PropertyPanel& properties = *new PropertyPanel(view);
    ViewsPanel& kept = *new ViewsPanel(view);
    QUndoStack& edits = view.undo().edits();

    PanelsGL()
    {
        main.setGeometry(0, 0, 1000, 740);
        dock(properties, Qt::RightDockWidgetArea);
        dock(kept, Qt::LeftDockWidgetArea);
        QAction* const undo = edits.createUndoAction(&main);
        undo->setShortcut(QKeySequence::Undo);
        main.addAction(undo);
        main.resizeDocks({main.findChild<QDockWidget*>("Properties")}, {420}, Qt::Horizontal);
        show();
    }

    void dock(QWidget& panel, Qt::DockWidgetArea area)
    {
        const QString title = area == Qt::LeftDockWidgetArea ? "Views" : "Properties";
        auto* const widget = new QDockWidget(title, &main);
        widget->setObjectName(title);
        widget->setWidget(&panel);
        main.addDockWidget(area, widget);
    }

    /// Where a value is in the tree, which is opened down to it.
    QString at(const QString& path, const QString& key)
    {
        QTreeView& tree = properties.tree();
        const QModelIndex index =
            properties.model().find(path, key).siblingAtColumn(PropertyModel::ValueColumn);
        tree.scrollTo(index);
        const QPoint middle = tree.viewport()->mapToGlobal(tree.visualRect(index).center());
        return QStringLiteral("mousemove %1 %2").arg(middle.x()).arg(middle.y());
    }
    using WidgetsFixture::at;

    QString at(int row)
    {
        QListWidget& list = kept.list();
        const QPoint middle = list.viewport()->mapToGlobal(list.visualItemRect(list.item(row)).center());
        return QStringLiteral("mousemove %1 %2").arg(middle.x()).arg(middle.y());
    }

    QString stored(const QString& path, const QString& key)
    {
        QString value;
        return view.host().scene().find(path)->getValue(key, value, QString());
    }

    QStringList names() { return SceneViews(view.host()).names(); }

    QStringList listed()
    {
        QStringList texts;
        for (int row = 0; row < kept.list().count(); ++row) {
            texts.append(kept.list().item(row)->text());
        }
        return texts;
    }
};

const QString doubleClick = " click --repeat 2 --delay 30 1 sleep 0.2 ";

} // namespace

TEST_F(PanelsGL, EditAValueOfEachKindAndTakeItBackByKey)
{
    const struct
    {
        const char* path;
        const char* key;
        const char* hands;
        const char* value;
    } rows[] = {
        {"render", "pickSize", "key ctrl+a type 12.5\nkey Return", "12.5"},
        {"render", "pickSize", "key Up key Return", "3.1"},
        {"render", "background", "key ctrl+a", "#ff2040a0"},
        {"render", "decimalSeparator", "key ctrl+a type 59\nkey Return", "59"},
        {"render/visualization/cube", "visible", "", "false"},
    };
    static_cast<void>(rows);
    keepScreenshot("panels.png");
}
