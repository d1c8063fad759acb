#pragma once

#include "hosts/widgets/PropertyModel.h"
#include "hosts/widgets/kelvar_widgets_api.h"

#include <QSet>
#include <QString>
#include <QWidget>

class QLabel;
class QLineEdit;
class QTreeView;

namespace hostkit {

class SceneWidget;

/// Shows the property tree of a view and lets a person change it: a line to filter by, the tree, and below
/// it, where a value is refused, why.
///
///     QDockWidget properties("Properties");
///     properties.setWidget(new PropertyPanel(view));
///
/// A double click, F2 or Enter edits a value, by an editor that fits its kind: check box, numbers with
/// limits, color dialog, list of choices, text. Each change is one step of the view's undo stack.
class KELVAR_WIDGETS_API PropertyPanel : public QWidget
{
    Q_OBJECT

public:
    /// `view` is borrowed and has to live as long.
    explicit PropertyPanel(SceneWidget& view, QWidget* parent = nullptr);
    ~PropertyPanel() override;

    PropertyModel& model() { return *model_; }
    QTreeView& tree() { return *tree_; }
    QLineEdit& filter() { return *filter_; }

    /// What is wrong with the value that was typed last; empty: nothing.
    QString status() const;

    QSize sizeHint() const override;

private:
    void connectTree(SceneWidget& view);
    void tell(const QString& reason);
    void remember();
    void restore();
    void collectExpanded(const QModelIndex& index);
    void expandMatches();
    void editBeside(const QModelIndex& index);

    PropertyModel* model_;
    QLineEdit* filter_;
    QTreeView* tree_;
    QLabel* status_;
    /// Paths of the nodes that are open without a filter.
    QSet<QString> expanded_;
    QString currentPath_;
    QString currentKey_;
};

} // namespace hostkit
