#pragma once

#include "hosts/viewer/window/Selection.h"

#include <QSet>
#include <QString>
#include <QWidget>

class ModelTreeModel;
class QLineEdit;
class QModelIndex;
class QTreeView;

namespace hostkit {
class SceneWidget;
} // namespace hostkit

/// The nodes and parts of the models of a view: a line to search by, and the tree below it.
///
/// What is chosen in the tree is the selection of the view, and the other way round; a node stands for all
/// parts below it. Space shows and hides, Enter and a double click fit the view to the selection.
class ModelTreePanel : public QWidget
{
    Q_OBJECT

public:
    /// Both are borrowed and have to live as long.
    ModelTreePanel(hostkit::SceneWidget& view, Selection& selection, QWidget* parent = nullptr);
    ~ModelTreePanel() override;

    ModelTreeModel& model() { return *model_; }
    QTreeView& tree() { return *tree_; }
    QLineEdit& search() { return *search_; }

    /// Other models are shown: what was open and where the tree was scrolled to stays, where they have nodes
    /// of the same names.
    void reset();

    QSize sizeHint() const override;

private:
    void find(const QString& words);
    void expandAgain();
    void noteExpanded(const QModelIndex& index, bool expanded);
    Selection::Parts chosen() const;
    void choose();
    void follow();

    Selection& selection_;
    ModelTreeModel* model_;
    QLineEdit* search_;
    QTreeView* tree_;
    /// The paths of the nodes that are open.
    QSet<QString> expanded_;
    /// The tree is being brought to what is chosen in the view.
    bool following_ = false;
};
