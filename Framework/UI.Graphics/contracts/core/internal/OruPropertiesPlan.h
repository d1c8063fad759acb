#pragma once

#include "contracts/core/OruProperties.h"

#include <QJsonObject>
#include <QString>

#include <memory>
#include <vector>

/// What a property file says of one node and of those below it, in the order of the file. Not part of the
/// public interface.
struct OruPropertiesPlan
{
    struct Value
    {
        QString key;
        QString text;
        QString unit;        ///< null without one
        QJsonObject unknown; ///< other members of a value that stands as an object
    };

    QString name;
    QString type;   ///< null without one
    int flags = -1; ///< -1 without any
    std::vector<Value> values;
    std::vector<OruPropertiesPlan> children;
    QJsonObject unknown; ///< other members

    /// The node as it stands in the file, where there is a document of that; else empty.
    QJsonObject json;

    /// A child that its parent has made and that is in no tree yet. Null: it is there, or nobody can make it.
    std::unique_ptr<OruProperties> made;
};
