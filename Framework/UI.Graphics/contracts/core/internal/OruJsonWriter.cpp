#include "contracts/core/internal/OruJsonWriter.h"

#include "contracts/core/internal/OruJson.h"

#include <QJsonArray>
#include <QJsonObject>

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace {

/// Stands in a document as it is.
bool isPlain(QChar character)
{
    return character >= QLatin1Char(' ') && character <= QLatin1Char('~') && character != QLatin1Char('"') &&
           character != QLatin1Char('\\');
}

/// A half of a character beyond U+FFFF whose other half is missing; UTF-8 has no form for that.
bool isLone(const QString& string, int place)
{
    const QChar character = string.at(place);
    return (character.isHighSurrogate() &&
            (place + 1 == string.size() || !string.at(place + 1).isLowSurrogate())) ||
           (character.isLowSurrogate() && (place == 0 || !string.at(place - 1).isHighSurrogate()));
}

/// What is written for a character; empty: it stands as it is. A byte order mark is escaped: the reader would
/// drop it from the start of a text.
QByteArray escapeOf(const QString& string, int place)
{
    constexpr std::string_view named = "\"\\\b\f\n\r\t";
    constexpr std::string_view names = "\"\\bfnrt";
    const char16_t code = string.at(place).unicode();
    const std::size_t found = code < 0x80 ? named.find(static_cast<char>(code)) : std::string_view::npos;
    if (found != std::string_view::npos) {
        return QByteArray("\\") + names[found];
    }
    const bool byNumber = code < u' ' || code == u'\ufeff' || isLone(string, place);
    return byNumber ? "\\u" + QByteArray::number(code, 16).rightJustified(4, '0') : QByteArray();
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
    } else if (json.isString()) {
        string(json.toString());
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
    text_ += '"';
    int start = 0;
    for (int i = 0; i < string.size(); ++i) {
        if (!isPlain(string.at(i))) {
            const QByteArray escape = escapeOf(string, i);
            if (!escape.isEmpty()) {
                text_ += string.mid(start, i - start).toUtf8();
                text_ += escape;
                start = i + 1;
            }
        }
    }
    text_ += start == 0 ? string.toUtf8() : string.mid(start).toUtf8();
    text_ += '"';
}

void OruJsonWriter::leaf(const QJsonValue& json)
{
    text_ += json.isDouble() ? oru::jsonNumber(json).toLatin1()
             : json.isBool() ? QByteArray(json.toBool() ? "true" : "false")
                             : QByteArray("null");
}
