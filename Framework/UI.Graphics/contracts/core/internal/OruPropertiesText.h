#pragma once

#include "contracts/core/internal/OruJsonWriter.h"

#include <QByteArray>
#include <QJsonObject>
#include <QString>

class OruProperties;

/// Writes the text of a property tree as a file holds it, together with what files said of it that it has no
/// place for. Not part of the public interface.
class OruPropertiesText
{
public:
    OruPropertiesText();

    QByteArray of(const OruProperties& root, int version);

private:
    void write(const OruProperties& node);
    void writeValues(const OruProperties& node);
    void writeValue(const OruProperties& node, const QString& key);
    void writeChildren(const OruProperties& node);
    void writeUnknown(const QJsonObject& members, bool aheadOfName);

    OruJsonWriter writer_;
};
