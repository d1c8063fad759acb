#pragma once

#include "contracts/core/internal/OruJsonWriter.h"
#include "contracts/core/internal/OruPropertiesKinds.h"

#include <QByteArray>
#include <QJsonObject>
#include <QString>
#include <QStringList>

class OruProperties;

/// Writes the text of a property tree as a file holds it, together with what files said of it that it has no
/// place for. Not part of the public interface.
///
/// A value that is not of its property's kind would have the whole file refused, so it is left out; one line
/// on the error stream tells of the first one and how many more there are.
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
    QStringList writtenKeys(const OruProperties& node);
    bool isOfItsKind(const OruProperties& node, const QString& key);
    void tellLeftOut() const;

    OruJsonWriter writer_;
    OruPropertiesKinds kinds_;
    int leftOut_ = 0;
    /// The first value that was left out, and why.
    QString firstLeftOut_;
};
