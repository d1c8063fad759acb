#include "contracts/core/internal/OruJsonWriter.h"

#include "contracts/core/internal/OruJson.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

namespace {

/// Stands in a document as it is.
bool isPlain(QChar character)
{
    return character >= QLatin1Char(' ') && character <= QLatin1Char('~') && character != QLatin1Char('"') &&
           character != QLatin1Char('\\');
}

} // namespace

OruJsonWriter::OruJsonWriter(const QStringList& order)
{
    for (const QString& key : order) {
        ranks_.insert(key, static_cast<int>(ranks_.size()));
    }
}

void OruJsonWriter::begin(char opening, char closing)
{
    startItem();
    text_ += opening;
    levels_.push_back(Level{closing, false});
}

void OruJsonWriter::end()
{
    const Level level = levels_.back();
    levels_.pop_back();
    if (level.filled) {
        startLine();
    }
    text_ += level.closing;
}

void OruJsonWriter::key(const QString& name)
{
    string(name);
    text_ += ": ";
    behindKey_ = true;
}

void OruJsonWriter::string(const QString& value)
{
    startItem();
    quote(value);
}

void OruJsonWriter::value(const QJsonValue& json)
{
    if (json.isObject()) {
        const QJsonObject object = json.toObject();
        beginObject();
        for (const QString& name : ordered(object.keys())) {
            key(name);
            value(object.value(name));
        }
        end();
    } else if (json.isArray()) {
        beginArray();
        for (const QJsonValue element : json.toArray()) {
            value(element);
        }
        end();
    } else {
        startItem();
        leaf(json);
    }
}

QStringList OruJsonWriter::ordered(QStringList keys) const
{
    std::stable_sort(keys.begin(), keys.end(),
                     [this](const QString& a, const QString& b) { return rank(a) < rank(b); });
    return keys;
}

void OruJsonWriter::startItem()
{
    if (behindKey_) {
        behindKey_ = false;
    } else if (!levels_.empty()) {
        if (levels_.back().filled) {
            text_ += ',';
        }
        levels_.back().filled = true;
        startLine();
    }
}

void OruJsonWriter::startLine()
{
    text_ += '\n';
    text_.append(4 * static_cast<int>(levels_.size()), ' ');
}

void OruJsonWriter::quote(const QString& string)
{
    if (!std::all_of(string.begin(), string.end(), isPlain)) {
        leaf(string);
        return;
    }
    text_ += '"';
    text_ += string.toLatin1();
    text_ += '"';
}

/// A document must be an object or an array, so a leaf is written as the only element of one. A byte order
/// mark is escaped: the reader would drop it from the start of a text.
void OruJsonWriter::leaf(const QJsonValue& json)
{
    if (json.isDouble()) {
        text_ += oru::jsonNumber(json).toLatin1();
        return;
    }
    const QByteArray array = QJsonDocument(QJsonArray{json}).toJson(QJsonDocument::Compact);
    text_ += array.mid(1, array.size() - 2).replace(oru::byteOrderMark, "\\ufeff");
}
