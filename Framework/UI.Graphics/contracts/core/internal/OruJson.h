#pragma once

#include <QByteArray>
#include <QJsonValue>
#include <QString>
#include <QStringList>

/// What QJsonDocument leaves open for a file that people read, edit and get error messages about. Not part of
/// the public interface.
namespace oru {

/// U+FEFF in UTF-8.
constexpr const char* byteOrderMark = "\xEF\xBB\xBF";

/// The text of a number, with all digits of a 64-bit integer.
QString jsonNumber(const QJsonValue& number);

/// Where in `document`, which must be valid, a value stands: the offset of its first byte. `steps` lead there
/// from the top, names of members and numbers of array elements; a step that is not there ends the way.
int jsonOffset(const QByteArray& document, const QStringList& steps);

/// "line:column" of an offset, both from 1, columns in characters.
QString jsonPosition(const QByteArray& document, int offset);

} // namespace oru
