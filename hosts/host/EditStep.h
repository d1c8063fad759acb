#pragma once

#include "hosts/host/kelvar_host_api.h"

#include <QHash>
#include <QPair>
#include <QString>

#include <vector>

class OruProperties;

namespace hostkit {

/// What one edit session changed in a property tree; can be taken back and made again.
///
/// Nodes are told by their paths, so that a step also fits a tree that was made anew. A node or a property
/// that is gone by then is left out.
class KELVAR_HOST_API EditStep
{
public:
    struct Change
    {
        /// The node's path from the root, and its key.
        QString path;
        QString key;
        QString before;
        QString after;
    };

    /// Notes a change. One of a property that was changed already joins the change before.
    void add(const Change& change);

    /// Drops the changes that ended where they began.
    void settle();

    bool empty() const { return changes_.empty(); }
    const std::vector<Change>& changes() const { return changes_; }

    /// What a person would call it: "Move body_8", "Change background of render".
    QString name() const;

    void undo(OruProperties& root) const;
    void redo(OruProperties& root) const;

private:
    std::vector<Change> changes_;
    /// Where among them, by path and key: a step may change a property of each of 100,000 parts.
    QHash<QPair<QString, QString>, std::size_t> places_;
};

} // namespace hostkit
