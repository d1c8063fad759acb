#pragma once

#include "hosts/host/SceneWindow.h"
#include "hosts/widgets/kelvar_widgets_api.h"

#include <QAbstractItemModel>
#include <QMetaType>
#include <QString>

#include <cstddef>
#include <memory>
#include <vector>

class OruProperties;
class OruPropertyKind;

namespace hostkit {

class PropertyFilter;
struct PropertyRow;
struct PropertySubject;

/// The property tree of a window's scene as an item model: below a row for each node its properties, then its
/// children.
///
/// It follows the tree, whoever changes it: after each frame it asks the root whether anything changed, one
/// comparison, and then looks only into nodes whose content changed and which a view has opened. Rows are
/// made when a view opens the node above them. When the window makes a new scene the model is reset.
///
/// A value is set by the scene's editor, so that it can be undone; one that is not of the property's kind is
/// refused, and refused() tells why. Names and units are not edited here.
class KELVAR_WIDGETS_API PropertyModel : public QAbstractItemModel
{
    Q_OBJECT

public:
    enum Column
    {
        NameColumn,
        ValueColumn,
        UnitColumn,
        ColumnCount
    };

    enum Role
    {
        /// What a property holds, a `const OruPropertyKind*`; not valid for nodes.
        KindRole = Qt::UserRole,
        /// The path of the node, or of the property's node, from the root.
        PathRole,
        /// The key of a property; not valid for nodes.
        KeyRole
    };

    /// `window` is borrowed and has to live as long.
    explicit PropertyModel(SceneWindow& window, QObject* parent = nullptr);
    ~PropertyModel() override;

    /// Leaves the rows that hold `words`, whatever the case, in the name of a node, a key or a value, with
    /// the rows above them, and all below a node of such a name. Empty: all rows. Resets the model.
    void setFilter(const QString& words);
    QString filter() const;

    /// What refused() tells: `reason` as OruPropertyKind::accepts gives it, with the key it is about.
    static QString refusal(const QString& key, const QString& reason);

    /// The row of a node, or of a property; not valid: there is none, or the filter hides it.
    QModelIndex find(const QString& path, const QString& key = QString());

    /// Catches up with the tree at once. O(1) if nothing changed.
    void update();

    QModelIndex index(int row, int column, const QModelIndex& parent = QModelIndex()) const override;
    QModelIndex parent(const QModelIndex& child) const override;
    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    int columnCount(const QModelIndex& parent = QModelIndex()) const override;
    bool hasChildren(const QModelIndex& parent = QModelIndex()) const override;
    bool canFetchMore(const QModelIndex& parent) const override;
    void fetchMore(const QModelIndex& parent) override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;

Q_SIGNALS:
    /// A value was not set; a sentence for a person.
    void refused(const QString& reason);

private:
    using Subjects = std::vector<PropertySubject>;

    void reset(const QString& words);
    PropertyRow* rowOf(const QModelIndex& index) const;
    QModelIndex indexOf(PropertyRow& row, int column = NameColumn) const;
    void catchUp(PropertyRow& row, bool all);
    bool refreshNode(PropertyRow& row);
    void refreshValue(PropertyRow& row);
    void reconcile(PropertyRow& row);
    void dropRows(PropertyRow& row, const Subjects& wanted);
    void makeRows(PropertyRow& row, const Subjects& wanted, std::size_t first, std::size_t end);

    SceneWindow& window_;
    std::unique_ptr<PropertyFilter> filter_;
    /// Above the row of the scene; has no node.
    std::unique_ptr<PropertyRow> top_;
};

} // namespace hostkit

Q_DECLARE_METATYPE(const OruPropertyKind*)
