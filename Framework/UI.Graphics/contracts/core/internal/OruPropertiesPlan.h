#pragma once

#include "contracts/core/OruProperties.h"

#include <QJsonObject>
#include <QString>

#include <memory>
#include <vector>

/// What a property file that has been checked says of one node and of those below it, in the order of the
/// file. Not part of the public interface.
struct OruPropertiesPlan
{
    struct Value
    {
        QString key;
        QString text;
        QJsonObject parts; ///< the members of a value that stands as an object; else none
    };

    QString name;
    QString type;   ///< empty without one
    int flags = -1; ///< -1 without any
    QJsonObject json;
    bool hasUnknown = false; ///< `json` has members that no other member here tells of
    std::vector<Value> values;
    std::vector<OruPropertiesPlan> children;
    /// A child that its parent has made and that is in no tree yet. Null: it is there, or nobody can make it.
    std::unique_ptr<OruProperties> made;
};
