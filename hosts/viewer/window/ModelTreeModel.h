#pragma once

#include "contracts/core/OruViewPtr.h"

#include <QAbstractItemModel>
#include <QHash>
#include <QItemSelection>
#include <QString>

#include <memory>
#include <vector>

class OruProperties;

namespace hostkit {
class SceneWidget;
} // namespace hostkit

/// The models of a view as rows: the nodes of their files, and their parts. A row is checked while its node
/// is visible, and unchecking it is one step that can be undone.
///
/// Rows are made when somebody asks for them, so that 100,000 parts cost nothing until their list is opened.
/// With words to search for there are only the nodes whose names hold them, what lies above these, and what
/// lies below.
class ModelTreeModel : public QAbstractItemModel
{
    Q_OBJECT

public:
    /// `view` is borrowed and has to live as long.
    explicit ModelTreeModel(hostkit::SceneWidget& view, QObject* parent = nullptr);
    ~ModelTreeModel() override;

    /// Starts anew: other models are shown.
    void reset() { search(words_); }

    /// Case does not count; empty: all nodes.
    void search(const QString& words);

    /// Null: the node is gone.
    OruProperties* node(const QModelIndex& index) const;

    /// The node with that path from the root of the scene; null: there is none.
    OruProperties* node(const QString& path) const;

    /// Where a node is; invalid: it has no row.
    QModelIndex find(const OruProperties& node);

    /// The rows of nodes, those beside each other as one range.
    template <typename Nodes>
    QItemSelection selectionOf(const Nodes& nodes)
    {
        QItemSelection found;
        for (const OruProperties* const each : nodes) {
            const QModelIndex at = find(*each);
            const bool joins = at.isValid() && !found.isEmpty() && found.last().parent() == at.parent() &&
                               found.last().bottom() + 1 == at.row();
            if (joins) {
                found.last() = QItemSelectionRange(found.last().topLeft(), at);
            } else if (at.isValid()) {
                found.append(QItemSelectionRange(at));
            }
        }
        return found;
    }

    QModelIndex index(int row, int column, const QModelIndex& parent = QModelIndex()) const override;
    QModelIndex parent(const QModelIndex& index) const override;
    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    int columnCount(const QModelIndex& parent = QModelIndex()) const override;
    bool hasChildren(const QModelIndex& parent = QModelIndex()) const override;
    bool canFetchMore(const QModelIndex& parent) const override;
    void fetchMore(const QModelIndex& parent) override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;

private:
    struct Row
    {
        oru::view_ptr<OruProperties> node;
        /// Null for the topmost, which has no node.
        Row* above = nullptr;
        int number = 0;
        /// All of its rows are there.
        bool fetched = false;
        std::vector<std::unique_ptr<Row>> rows;
    };

    void note(const Row& row);
    static void add(Row& above, std::unique_ptr<Row> row);
    std::unique_ptr<Row> made(OruProperties& node) const;
    std::unique_ptr<Row> matching(OruProperties& node) const;
    void fetch(Row& row) const;
    Row& rowOf(const QModelIndex& index) const;
    QModelIndex indexOf(const Row& row) const;

    hostkit::SceneWidget& view_;
    QString words_;
    std::unique_ptr<Row> top_;
    /// The rows that a search has found, by their nodes: these have other places than the nodes.
    QHash<const OruProperties*, const Row*> found_;
};
