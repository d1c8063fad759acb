#include "hosts/widgets/PropertyModel.h"

#include "contracts/core/OruProperties.h"
#include "contracts/core/OruPropertyKind.h"
#include "contracts/core/OruText.h"
#include "hosts/host/HostScene.h"
#include "hosts/widgets/internal/PropertyFilter.h"
#include "hosts/widgets/internal/PropertyRow.h"

#include <QColor>
#include <QHash>

#include <algorithm>
#include <array>

namespace hostkit {

namespace {

constexpr std::array<const char*, PropertyModel::ColumnCount> titles = {"Name", "Value", "Unit"};

/// Null for a node, and once that is gone.
const OruPropertyKind* kindOf(const PropertyRow& row)
{
    return row.property && row.node() ? &row.node()->kind(row.key) : nullptr;
}

bool isFlag(const OruPropertyKind* kind)
{
    return kind && kind->type() == OruPropertyKind::Type::Flag;
}

template <typename T>
T read(const QString& text)
{
    T value{};
    oru::fromString(text, value);
    return value;
}

/// The words for a value that has some; a flag is a box without words.
QString shownText(const PropertyRow& row)
{
    const OruPropertyKind* const kind = kindOf(row);
    if (!kind || isFlag(kind)) {
        return kind ? QString() : row.text;
    }
    const auto same = [&](const OruPropertyKind::Choice& choice) {
        return QString::fromUtf8(choice.value) == row.text;
    };
    const auto found = std::find_if(kind->choices().begin(), kind->choices().end(), same);
    return found != kind->choices().end() ? QString::fromUtf8(found->text) : row.text;
}

QString hint(const PropertyRow& row)
{
    const OruPropertyKind* const kind = kindOf(row);
    return kind ? QStringLiteral("%1: %2").arg(row.key, kind->wanted()) : row.path();
}

QVariant valueData(const PropertyRow& row, int role)
{
    const OruPropertyKind* const kind = kindOf(row);
    switch (role) {
    case Qt::DisplayRole:
        return shownText(row);
    case Qt::EditRole:
        return row.text;
    case Qt::CheckStateRole:
        return isFlag(kind) ? QVariant(read<bool>(row.text) ? Qt::Checked : Qt::Unchecked) : QVariant();
    case Qt::DecorationRole:
        return kind && kind->type() == OruPropertyKind::Type::Color ? QVariant(read<QColor>(row.text))
                                                                    : QVariant();
    default:
        return {};
    }
}

/// The form in which a view gives a value back, as the tree keeps it.
QString storedForm(const QVariant& value, int role)
{
    if (role == Qt::CheckStateRole) {
        return oru::toString(value.toInt() != Qt::Unchecked);
    }
    return value.userType() == QMetaType::QColor ? oru::toString(value.value<QColor>()) : value.toString();
}

} // namespace

PropertyModel::PropertyModel(SceneWindow& window, QObject* parent)
    : QAbstractItemModel(parent)
    , window_(window)
{
    reset(QString());
    connect(&window, &SceneWindow::frameDrawn, this, &PropertyModel::update);
    connect(&window, &SceneWindow::sceneRenewed, this, [this] { reset(filter()); });
}

PropertyModel::~PropertyModel() = default;

void PropertyModel::setFilter(const QString& words)
{
    if (words != filter()) {
        reset(words);
    }
}

QString PropertyModel::filter() const
{
    return filter_->words();
}

void PropertyModel::reset(const QString& words)
{
    beginResetModel();
    filter_ = std::make_unique<PropertyFilter>(words);
    top_ = std::make_unique<PropertyRow>();
    top_->whole = !filter_->active();
    top_->fetched = true;
    if (window_.hasScene()) {
        const PropertySubject scene{&window_.host().scene(), QString(), false};
        top_->rows.push_back(std::make_unique<PropertyRow>(*top_, scene, *filter_));
    }
    endResetModel();
}

QString PropertyModel::refusal(const QString& key, const QString& reason)
{
    return QStringLiteral("\"%1\" %2").arg(key, reason);
}

QModelIndex PropertyModel::find(const QString& path, const QString& key)
{
    update();
    if (top_->rows.empty()) {
        return {};
    }
    PropertyRow* row = top_->rows.front().get();
    QStringList names = path.isEmpty() ? QStringList() : path.split(QLatin1Char('/'));
    const int steps = static_cast<int>(names.size());
    names += key.isNull() ? QStringList() : QStringList(key);
    for (int i = 0; i < names.size(); ++i) {
        fetchMore(indexOf(*row));
        const auto found = std::find_if(row->rows.begin(), row->rows.end(), [&](const auto& each) {
            return each->name == names.at(i) && each->property == (i >= steps);
        });
        if (found == row->rows.end()) {
            return {};
        }
        row = found->get();
    }
    return indexOf(*row);
}

void PropertyModel::update()
{
    for (const auto& scene : top_->rows) {
        catchUp(*scene, false);
    }
}

/// Brings a row of a node up to date, with all that is made below it. `all`: whatever the revisions say.
void PropertyModel::catchUp(PropertyRow& row, bool all)
{
    const OruProperties* const node = row.node();
    if (!node || (!all && row.subtreeRevision == node->subtreeRevision())) {
        return;
    }
    const bool own = row.revision != node->revision();
    row.subtreeRevision = node->subtreeRevision();
    row.revision = node->revision();
    all = ((own || all) && refreshNode(row)) || all;
    if (!row.fetched) {
        return;
    }
    if (own || all || filter_->active()) {
        reconcile(row);
    }
    for (std::size_t i = 0; i < row.rows.size(); ++i) {
        PropertyRow& below = *row.rows[i];
        if (!below.property) {
            catchUp(below, all);
        } else if (own) {
            refreshValue(below);
        }
    }
}

/// True: other rows have to be below than before, because the node is called otherwise.
bool PropertyModel::refreshNode(PropertyRow& row)
{
    refreshValue(row);
    const bool wasWhole = row.whole;
    row.whole = row.isWhole(*filter_);
    return row.whole != wasWhole;
}

void PropertyModel::refreshValue(PropertyRow& row)
{
    if (row.refresh()) {
        Q_EMIT dataChanged(indexOf(row), indexOf(row, UnitColumn));
    }
}

/// Removes the rows of what is gone or went elsewhere, and makes those that are missing.
void PropertyModel::reconcile(PropertyRow& row)
{
    const Subjects wanted = row.wanted(*filter_);
    dropRows(row, wanted);
    const auto fits = [&](std::size_t have, std::size_t want) {
        return have < row.rows.size() && row.rows[have]->subject().id() == wanted[want].id();
    };
    for (std::size_t first = 0; first < wanted.size(); ++first) {
        std::size_t end = first;
        while (end < wanted.size() && !fits(first, end)) {
            ++end;
        }
        makeRows(row, wanted, first, end);
        first = end;
    }
}

/// The rows that stay are then in the order in which they are wanted. In runs, since each one costs the
/// views.
void PropertyModel::dropRows(PropertyRow& row, const Subjects& wanted)
{
    QHash<PropertySubject::Id, int> places;
    for (std::size_t i = 0; i < wanted.size(); ++i) {
        places.insert(wanted[i].id(), static_cast<int>(i));
    }
    std::vector<bool> stays;
    int last = -1;
    for (const auto& each : row.rows) {
        const int place = each->node() ? places.value(each->subject().id(), -1) : -1;
        stays.push_back(place > last);
        last = std::max(last, place);
    }
    for (std::size_t end = stays.size(); end > 0; --end) {
        std::size_t first = end;
        while (first > 0 && !stays[first - 1]) {
            --first;
        }
        if (first < end) {
            beginRemoveRows(indexOf(row), static_cast<int>(first), static_cast<int>(end) - 1);
            row.rows.erase(row.rows.begin() + first, row.rows.begin() + end);
            row.number(first);
            endRemoveRows();
        }
        end = std::max<std::size_t>(first, 1);
    }
}

void PropertyModel::makeRows(PropertyRow& row, const Subjects& wanted, std::size_t first, std::size_t end)
{
    if (first == end) {
        return;
    }
    beginInsertRows(indexOf(row), static_cast<int>(first), static_cast<int>(end) - 1);
    std::vector<std::unique_ptr<PropertyRow>> made;
    for (std::size_t i = first; i < end; ++i) {
        made.push_back(std::make_unique<PropertyRow>(row, wanted[i], *filter_));
    }
    row.rows.insert(row.rows.begin() + first, std::make_move_iterator(made.begin()),
                    std::make_move_iterator(made.end()));
    row.number(first);
    endInsertRows();
}

PropertyRow* PropertyModel::rowOf(const QModelIndex& index) const
{
    return index.isValid() ? static_cast<PropertyRow*>(index.internalPointer()) : top_.get();
}

QModelIndex PropertyModel::indexOf(PropertyRow& row, int column) const
{
    return &row == top_.get() ? QModelIndex() : createIndex(row.position, column, &row);
}

QModelIndex PropertyModel::index(int row, int column, const QModelIndex& parent) const
{
    return hasIndex(row, column, parent)
               ? indexOf(*rowOf(parent)->rows[static_cast<std::size_t>(row)], column)
               : QModelIndex();
}

QModelIndex PropertyModel::parent(const QModelIndex& child) const
{
    return child.isValid() ? indexOf(*rowOf(child)->parent) : QModelIndex();
}

int PropertyModel::rowCount(const QModelIndex& parent) const
{
    return parent.column() > 0 ? 0 : static_cast<int>(rowOf(parent)->rows.size());
}

int PropertyModel::columnCount(const QModelIndex&) const
{
    return ColumnCount;
}

bool PropertyModel::hasChildren(const QModelIndex& parent) const
{
    return rowCount(parent) > 0 || canFetchMore(parent);
}

bool PropertyModel::canFetchMore(const QModelIndex& parent) const
{
    return parent.column() <= 0 && !rowOf(parent)->fetched;
}

void PropertyModel::fetchMore(const QModelIndex& parent)
{
    PropertyRow& row = *rowOf(parent);
    if (canFetchMore(parent) && row.node()) {
        const Subjects wanted = row.wanted(*filter_);
        row.fetched = true;
        makeRows(row, wanted, 0, wanted.size());
    }
}

Qt::ItemFlags PropertyModel::flags(const QModelIndex& index) const
{
    const PropertyRow& row = *rowOf(index);
    Qt::ItemFlags flags = QAbstractItemModel::flags(index);
    flags.setFlag(Qt::ItemNeverHasChildren, row.property);
    if (index.column() == ValueColumn && kindOf(row)) {
        flags |= isFlag(kindOf(row)) ? Qt::ItemIsUserCheckable : Qt::ItemIsEditable;
    }
    return flags;
}

QVariant PropertyModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    const bool title = orientation == Qt::Horizontal && role == Qt::DisplayRole && section < ColumnCount;
    return title ? QVariant(QLatin1String(titles[static_cast<std::size_t>(section)])) : QVariant();
}

QVariant PropertyModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid()) {
        return {};
    }
    const PropertyRow& row = *rowOf(index);
    switch (role) {
    case Qt::ToolTipRole:
        return hint(row);
    case KindRole:
        return kindOf(row) ? QVariant::fromValue(kindOf(row)) : QVariant();
    case PathRole:
        return row.path();
    case KeyRole:
        return row.property ? row.key : QVariant();
    default:
        break;
    }
    if (index.column() == ValueColumn) {
        return valueData(row, role);
    }
    const QString& text = index.column() == NameColumn ? row.name : row.unit;
    return role == Qt::DisplayRole ? text : QVariant();
}

bool PropertyModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
    const bool edits = flags(index) & (Qt::ItemIsUserCheckable | Qt::ItemIsEditable);
    if (!edits || (role != Qt::EditRole && role != Qt::CheckStateRole)) {
        return false;
    }
    const PropertyRow& row = *rowOf(index);
    const QString text = storedForm(value, role);
    const QString key = row.key;
    const QString path = row.node()->path();
    QString reason;
    if (!kindOf(row)->accepts(text, &reason)) {
        Q_EMIT refused(refusal(key, reason));
        return false;
    }
    const bool done = window_.changeAndTell([&](HostScene& host) { // which may be another scene than before
        OruProperties* const node = host.scene().find(path);
        if (node) {
            host.edit(*node, key, text);
        }
        return node != nullptr;
    });
    if (!done) {
        Q_EMIT refused(refusal(key, QStringLiteral("could not be set")));
    }
    update();
    return done;
}

} // namespace hostkit
