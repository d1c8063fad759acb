#include "hosts/viewer/window/ModelTreeModel.h"

#include "contracts/core/OruProperties.h"
#include "contracts/core/OruText.h"
#include "contracts/vis/OruVisualization.h"
#include "hosts/mesh/ModelList.h"
#include "hosts/mesh/PartVisualization.h"
#include "hosts/widgets/SceneWidget.h"

#include <QApplication>
#include <QPalette>

#include <utility>

namespace {

const OruVisualization* shownIn(const OruProperties* node)
{
    return dynamic_cast<const OruVisualization*>(node);
}

} // namespace

ModelTreeModel::ModelTreeModel(hostkit::SceneWidget& view, QObject* parent)
    : QAbstractItemModel(parent)
    , view_(view)
    , top_(std::make_unique<Row>())
{
    reset();
}

ModelTreeModel::~ModelTreeModel() = default;

void ModelTreeModel::note(const Row& row)
{
    for (const auto& below : row.rows) {
        found_.insert(below->node.get(), below.get());
        note(*below);
    }
}

void ModelTreeModel::add(Row& above, std::unique_ptr<Row> row)
{
    row->above = &above;
    row->number = static_cast<int>(above.rows.size());
    above.rows.push_back(std::move(row));
}

std::unique_ptr<ModelTreeModel::Row> ModelTreeModel::made(OruProperties& node) const
{
    auto row = std::make_unique<Row>();
    row->node = oru::view_ptr<OruProperties>(node);
    row->fetched = node.size() == 0;
    return row;
}

/// Null: neither its name nor one below holds the words.
std::unique_ptr<ModelTreeModel::Row> ModelTreeModel::matching(OruProperties& node) const
{
    if (node.name().contains(words_, Qt::CaseInsensitive)) {
        return made(node);
    }
    std::unique_ptr<Row> row;
    for (unsigned int i = 0; i < node.size(); ++i) {
        std::unique_ptr<Row> below = node.at(i) ? matching(*node.at(i)) : nullptr;
        if (below) {
            row = row ? std::move(row) : made(node);
            add(*row, std::move(below));
        }
    }
    if (row) {
        row->fetched = true;
    }
    return row;
}

void ModelTreeModel::search(const QString& words)
{
    beginResetModel();
    words_ = words.trimmed();
    found_.clear();
    top_ = std::make_unique<Row>();
    top_->fetched = true;
    if (view_.window().hasScene()) {
        OruVisList& all = view_.host().scene().render.visualizations;
        for (unsigned int i = 0; i < all.size(); ++i) {
            auto* const model = dynamic_cast<hostkit::ModelList*>(all.at(i));
            std::unique_ptr<Row> row = !model ? nullptr : words_.isEmpty() ? made(*model) : matching(*model);
            if (row) {
                add(*top_, std::move(row));
            }
        }
    }
    note(*top_);
    endResetModel();
}

void ModelTreeModel::fetch(Row& row) const
{
    OruProperties* const node = row.node.get();
    for (unsigned int i = 0; node && i < node->size(); ++i) {
        if (node->at(i)) {
            add(row, made(*node->at(i)));
        }
    }
    row.fetched = true;
}

ModelTreeModel::Row& ModelTreeModel::rowOf(const QModelIndex& index) const
{
    return index.isValid() ? *static_cast<Row*>(index.internalPointer()) : *top_;
}

QModelIndex ModelTreeModel::indexOf(const Row& row) const
{
    return row.above ? createIndex(row.number, 0, const_cast<Row*>(&row)) : QModelIndex();
}

OruProperties* ModelTreeModel::node(const QModelIndex& index) const
{
    return index.isValid() ? rowOf(index).node.get() : nullptr;
}

OruProperties* ModelTreeModel::node(const QString& path) const
{
    return view_.window().hasScene() ? view_.host().scene().find(path) : nullptr;
}

/// Without words a row has the place of its node, unless that is a model.
QModelIndex ModelTreeModel::find(const OruProperties& node)
{
    QModelIndex above;
    if (!dynamic_cast<const hostkit::ModelList*>(&node)) {
        if (!node.parent()) {
            return {};
        }
        above = find(*node.parent());
        if (!above.isValid()) {
            return {};
        }
    }
    if (canFetchMore(above)) {
        fetchMore(above);
    }
    const std::vector<std::unique_ptr<Row>>& rows = rowOf(above).rows;
    const int place = node.parent() ? node.parent()->index(&node) : -1;
    if (place >= 0 && place < static_cast<int>(rows.size()) &&
        rows[static_cast<std::size_t>(place)]->node.get() == &node) {
        return indexOf(*rows[static_cast<std::size_t>(place)]);
    }
    const Row* const found = found_.value(&node);
    return found && found->node.get() == &node ? indexOf(*found) : QModelIndex();
}

QModelIndex ModelTreeModel::index(int row, int column, const QModelIndex& parent) const
{
    const Row& above = rowOf(parent);
    const bool there = column == 0 && row >= 0 && row < static_cast<int>(above.rows.size());
    return there ? indexOf(*above.rows[static_cast<std::size_t>(row)]) : QModelIndex();
}

QModelIndex ModelTreeModel::parent(const QModelIndex& index) const
{
    return index.isValid() ? indexOf(*rowOf(index).above) : QModelIndex();
}

int ModelTreeModel::rowCount(const QModelIndex& parent) const
{
    return static_cast<int>(rowOf(parent).rows.size());
}

int ModelTreeModel::columnCount(const QModelIndex&) const
{
    return 1;
}

bool ModelTreeModel::hasChildren(const QModelIndex& parent) const
{
    const Row& row = rowOf(parent);
    return !row.rows.empty() || !row.fetched;
}

bool ModelTreeModel::canFetchMore(const QModelIndex& parent) const
{
    return !rowOf(parent).fetched;
}

void ModelTreeModel::fetchMore(const QModelIndex& parent)
{
    Row& row = rowOf(parent);
    const OruProperties* const node = row.node.get();
    if (row.fetched || !node || node->size() == 0) {
        row.fetched = true;
        return;
    }
    beginInsertRows(parent, 0, static_cast<int>(node->size()) - 1);
    fetch(row);
    endInsertRows();
}

Qt::ItemFlags ModelTreeModel::flags(const QModelIndex& index) const
{
    return node(index) ? Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable : Qt::NoItemFlags;
}

QVariant ModelTreeModel::data(const QModelIndex& index, int role) const
{
    const OruVisualization* const shown = shownIn(node(index));
    if (!shown) {
        return {};
    }
    switch (role) {
    case Qt::DisplayRole:
        return shown->name();
    case Qt::CheckStateRole:
        return shown->visible.value() ? Qt::Checked : Qt::Unchecked;
    case Qt::ToolTipRole:
        return shown->path();
    default:
        return {};
    }
}

bool ModelTreeModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
    OruProperties* const changed = node(index);
    const OruVisualization* const shown = shownIn(changed);
    if (!shown || role != Qt::CheckStateRole) {
        return false;
    }
    view_.window().changeAndTell([&](hostkit::HostScene& host) {
        host.edit(*changed, shown->visible.name(), oru::toString(value.toInt() == Qt::Checked));
        return true;
    });
    Q_EMIT dataChanged(index, index, {role});
    return true;
}
