#include "hosts/widgets/PropertyPanel.h"

#include "hosts/widgets/SceneWidget.h"
#include "hosts/widgets/internal/PropertyDelegate.h"

#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QTreeView>
#include <QVBoxLayout>

#include <deque>

namespace hostkit {

namespace {

/// So many nodes are opened at once to show what a filter found.
constexpr int mostOpened = 200;

} // namespace

PropertyPanel::PropertyPanel(SceneWidget& view, QWidget* parent)
    : QWidget(parent)
    , model_(new PropertyModel(view.window(), this))
    , filter_(new QLineEdit(this))
    , tree_(new QTreeView(this))
    , status_(new QLabel(this))
    , expanded_({QString()})
{
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(filter_);
    layout->addWidget(tree_);
    layout->addWidget(status_);
    filter_->setPlaceholderText(tr("Filter by name, key or value"));
    filter_->setClearButtonEnabled(true);
    status_->setWordWrap(true);
    status_->setTextFormat(Qt::PlainText);
    status_->hide();

    tree_->setUniformRowHeights(true); // or the rows are measured one by one
    tree_->setAlternatingRowColors(true);
    tree_->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::SelectedClicked |
                           QAbstractItemView::EditKeyPressed);
    tree_->setModel(model_);
    tree_->header()->setStretchLastSection(false);
    tree_->header()->setSectionResizeMode(PropertyModel::ValueColumn, QHeaderView::Stretch);
    tree_->header()->resizeSection(PropertyModel::NameColumn, 180);
    tree_->header()->resizeSection(PropertyModel::UnitColumn, 50);
    connectTree(view);
    restore();
}

PropertyPanel::~PropertyPanel() = default;

/// Wide enough for names and values side by side.
QSize PropertyPanel::sizeHint() const
{
    return {360, 480};
}

void PropertyPanel::connectTree(SceneWidget& view)
{
    auto* const delegate = new PropertyDelegate(this);
    tree_->setItemDelegateForColumn(PropertyModel::ValueColumn, delegate);
    connect(delegate, &PropertyDelegate::why, this, &PropertyPanel::tell);
    connect(delegate, &PropertyDelegate::closeEditor, this,
            [this](QWidget*, QAbstractItemDelegate::EndEditHint hint) {
                if (hint == QAbstractItemDelegate::RevertModelCache) {
                    tell(QString());
                }
            });
    connect(model_, &PropertyModel::refused, this, &PropertyPanel::tell);
    connect(model_, &PropertyModel::modelAboutToBeReset, this, &PropertyPanel::remember);
    connect(model_, &PropertyModel::modelReset, this, &PropertyPanel::restore);
    connect(filter_, &QLineEdit::textChanged, model_, &PropertyModel::setFilter);
    connect(tree_, &QTreeView::activated, this, &PropertyPanel::editBeside);
    // A view that is hidden draws no frame.
    connect(&view.undo().edits(), &QUndoStack::indexChanged, model_, &PropertyModel::update);
}

QString PropertyPanel::status() const
{
    return status_->text();
}

void PropertyPanel::tell(const QString& reason)
{
    status_->setText(reason);
    status_->setVisible(!reason.isEmpty());
}

/// A model without rows, because there is no scene, is nothing to remember.
void PropertyPanel::remember()
{
    if (model_->rowCount() == 0) {
        return;
    }
    const QModelIndex current = tree_->currentIndex();
    currentPath_ = current.data(PropertyModel::PathRole).toString();
    currentKey_ = current.data(PropertyModel::KeyRole).toString();
    if (model_->filter().isEmpty()) {
        expanded_.clear();
        collectExpanded(model_->index(0, 0));
    }
}

void PropertyPanel::collectExpanded(const QModelIndex& index)
{
    if (!tree_->isExpanded(index)) {
        return;
    }
    expanded_.insert(index.data(PropertyModel::PathRole).toString());
    for (int row = 0; row < model_->rowCount(index); ++row) {
        collectExpanded(model_->index(row, 0, index));
    }
}

void PropertyPanel::restore()
{
    if (!model_->filter().isEmpty()) {
        expandMatches();
    } else {
        for (const QString& path : expanded_) {
            tree_->expand(model_->find(path));
        }
    }
    const QModelIndex current = model_->find(currentPath_, currentKey_);
    tree_->setCurrentIndex(current);
    tree_->scrollTo(current);
}

/// Breadth first, so that what is opened is near the top.
void PropertyPanel::expandMatches()
{
    std::deque<QModelIndex> queue{model_->index(0, 0)};
    for (int opened = 0; opened < mostOpened && !queue.empty(); ++opened) {
        const QModelIndex index = queue.front();
        queue.pop_front();
        model_->fetchMore(index); // the tree puts that off
        tree_->expand(index);
        for (int row = 0; row < model_->rowCount(index); ++row) {
            const QModelIndex below = model_->index(row, 0, index);
            if (model_->hasChildren(below)) {
                queue.push_back(below);
            }
        }
    }
}

/// Enter on the name of a property edits its value.
void PropertyPanel::editBeside(const QModelIndex& index)
{
    const QModelIndex value = index.siblingAtColumn(PropertyModel::ValueColumn);
    if (index.column() != PropertyModel::ValueColumn && value.flags().testFlag(Qt::ItemIsEditable)) {
        tree_->setCurrentIndex(value);
        tree_->edit(value);
    }
}

} // namespace hostkit
