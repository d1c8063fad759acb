#pragma once

#include <QHash>
#include <QJsonObject>
#include <QString>

#include <utility>
#include <vector>

/// What a loaded file said about a node that the node itself has no place for. It is kept with the node, so
/// that the next save writes it back. Not part of the public interface.
struct OruPropertiesForeign
{
    /// The members that have a place in the tree, in the order in which they are written.
    static constexpr const char* knownHead[] = {"format", "version", "tree"};
    static constexpr const char* knownNode[] = {"name", "type", "flags", "values", "children"};
    static constexpr const char* knownValue[] = {"value", "unit"};

    QJsonObject head;                               ///< unknown members beside "tree", at the root only
    QJsonObject members;                            ///< unknown members of the node
    QHash<QString, QJsonObject> valueMembers;       ///< unknown members of a value, by key
    std::vector<std::pair<int, QJsonObject>> nodes; ///< children that nobody could make, with their positions
};
