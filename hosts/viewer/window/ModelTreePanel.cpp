#include "hosts/viewer/window/ModelTreePanel.h"

#include "hosts/mesh/PartVisualization.h"
#include "hosts/viewer/window/ModelTreeModel.h"
#include "hosts/viewer/window/Selection.h"
#include "hosts/widgets/SceneWidget.h"

#include <QItemSelectionModel>
#include <QLineEdit>
#include <QScopedValueRollback>
#include <QTreeView>
#include <QVBoxLayout>

#include <algorithm>
#include <functional>
#include <unordered_set>

namespace {

/// With so many models it is better to see their names first.
constexpr int mostExpanded = 8;

/// So many rows that were found are opened at once.
constexpr int mostFound = 500;

Selection::Parts sorted(Selection::Parts parts)
{
    std::sort(parts.begin(), parts.end(), std::less<>());
    return parts;
}

int countBelow(const QAbstractItemModel& model, const QModelIndex& index)
{
    int count = 0;
    for (int row = 0; row < model.rowCount(index) && count < mostFound; ++row) {
        count += 1 + countBelow(model, model.index(row, 0, index));
    }
    return count;
}

} // namespace

ModelTreePanel::ModelTreePanel(hostkit::SceneWidget& view, Selection& selection, QWidget* parent)
    : QWidget(parent)
    , selection_(selection)
    , model_(new ModelTreeModel(view, this))
    , search_(new QLineEdit)
    , tree_(new QTreeView)
{
    search_->setPlaceholderText(tr("Search parts"));
    search_->setClearButtonEnabled(true);
    tree_->setModel(model_);
    tree_->setHeaderHidden(true);
    tree_->setUniformRowHeights(true);
    tree_->setSelectionMode(QAbstractItemView::ExtendedSelection);
    tree_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(search_);
    layout->addWidget(tree_, 1);
    setFocusProxy(search_);

    connect(search_, &QLineEdit::textChanged, this, &ModelTreePanel::find);
    connect(tree_->selectionModel(), &QItemSelectionModel::selectionChanged, this, &ModelTreePanel::choose);
    connect(tree_, &QTreeView::expanded, this, [this](const QModelIndex& at) { noteExpanded(at, true); });
    connect(tree_, &QTreeView::collapsed, this, [this](const QModelIndex& at) { noteExpanded(at, false); });
    connect(tree_, &QTreeView::activated, &selection_, &Selection::fit);
    connect(&selection_, &Selection::changed, this, &ModelTreePanel::follow);
    connect(&view.window(), &hostkit::SceneWindow::sceneRenewed, this, &ModelTreePanel::reset);
    // Rows read the tree when they are painted.
    connect(&view.window(), &hostkit::SceneWindow::frameDrawn, tree_->viewport(),
            QOverload<>::of(&QWidget::update));
    reset();
}

ModelTreePanel::~ModelTreePanel() = default;

QSize ModelTreePanel::sizeHint() const
{
    return {240, 400};
}

void ModelTreePanel::reset()
{
    find(search_->text());
}

void ModelTreePanel::find(const QString& words)
{
    {
        const QScopedValueRollback<bool> following(following_, true);
        model_->search(words);
    }
    if (words.isEmpty()) {
        expandAgain();
    } else if (countBelow(*model_, QModelIndex()) < mostFound) {
        tree_->expandAll();
    }
    follow();
}

/// What a person has opened is open again, by the names; the models are, at first.
void ModelTreePanel::expandAgain()
{
    const QSet<QString> paths = expanded_;
    bool any = false;
    for (const QString& path : paths) {
        if (const OruProperties* const node = model_->node(path)) {
            tree_->expand(model_->find(*node));
            any = true;
        }
    }
    if (!any && model_->rowCount() <= mostExpanded) {
        tree_->expandToDepth(0);
    }
}

/// What a search has opened does not count.
void ModelTreePanel::noteExpanded(const QModelIndex& index, bool expanded)
{
    const OruProperties* const node = search_->text().isEmpty() ? model_->node(index) : nullptr;
    if (node && expanded) {
        expanded_.insert(node->path());
    } else if (node) {
        expanded_.remove(node->path());
    }
}

/// The parts that the rows chosen in the tree stand for, each once.
Selection::Parts ModelTreePanel::chosen() const
{
    std::unordered_set<const Selection::Part*> taken;
    Selection::Parts parts;
    for (const QModelIndex& index : tree_->selectionModel()->selectedIndexes()) {
        OruProperties* const node = model_->node(index);
        for (Selection::Part* const part : node ? Selection::partsBelow(*node) : Selection::Parts()) {
            if (taken.insert(part).second) {
                parts.push_back(part);
            }
        }
    }
    return parts;
}

/// The selection becomes what is chosen in the tree.
void ModelTreePanel::choose()
{
    if (!following_) {
        selection_.select(chosen());
    }
}

/// The tree shows what is chosen in the view, unless a node does that already.
void ModelTreePanel::follow()
{
    const Selection::Parts wanted = selection_.parts();
    if (sorted(chosen()) == sorted(wanted)) {
        return;
    }
    const QScopedValueRollback<bool> following(following_, true);
    const QItemSelection rows = model_->selectionOf(wanted);
    tree_->selectionModel()->select(rows, QItemSelectionModel::ClearAndSelect);
    if (!rows.isEmpty()) {
        tree_->scrollTo(rows.first().topLeft());
    }
}
