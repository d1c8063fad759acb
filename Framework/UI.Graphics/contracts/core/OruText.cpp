#include "contracts/core/OruText.h"

#include <QByteArray>
#include <QDataStream>
#include <QIODevice>
#include <QRgba64>
#include <QStringList>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <string_view>
#include <system_error>

namespace {

/// The shortest float or double takes at most 24 characters, "-1.7976931348623157e+308".
constexpr std::size_t longestNumber = 32;

/// Writes a number and answers where it ends. Most are a digit, as those of a matrix that changes nothing.
template <typename Number>
char* writeNumber(char* to, char* end, Number value)
{
    if (value >= 0 && value <= 9 && !std::signbit(static_cast<double>(value))) {
        const int digit = static_cast<int>(value);
        if (static_cast<Number>(digit) == value) {
            *to = static_cast<char>('0' + digit);
            return to + 1;
        }
    }
    return std::to_chars(to, end, value).ptr;
}

template <std::size_t Count, typename Number>
QString numbersText(const Number* values)
{
    std::array<char, Count * longestNumber> buffer;
    char* end = buffer.data();
    for (std::size_t i = 0; i < Count; ++i) {
        if (i > 0) {
            *end++ = ' ';
        }
        end = writeNumber(end, buffer.data() + buffer.size(), values[i]);
    }
    return QString::fromLatin1(buffer.data(), static_cast<int>(end - buffer.data()));
}

bool isBlank(char character)
{
    return character == ' ' || character == '\t' || character == '\n' || character == '\r';
}

/// Reads the number at `from`, blanks skipped, and moves `from` behind it; `from` is null on failure.
template <typename Number>
Number takeNumber(const char*& from, const char* end)
{
    while (from != end && isBlank(*from)) {
        ++from;
    }
    if (from != end && *from >= '0' && *from <= '9' && (from + 1 == end || isBlank(from[1]))) {
        return static_cast<Number>(*from++ - '0');
    }
    Number number{};
    const std::from_chars_result read = std::from_chars(from, end, number);
    from = read.ec == std::errc() ? read.ptr : nullptr;
    return number;
}

template <typename Number>
bool parseNumber(const QString& text, Number& value)
{
    const QByteArray bytes = text.trimmed().toLatin1();
    const char* from = bytes.constData();
    const char* const end = from + bytes.size();
    const Number number = takeNumber<Number>(from, end);
    if (from != end) {
        return false;
    }
    value = number;
    return true;
}

/// The raw words of a color in the order of QDataStream: alpha, three channels, a fourth for CMYK.
using ColorWords = std::array<quint16, 5>;

/// The row's number is that of QColor::Spec.
constexpr std::array<std::string_view, 6> colorModels = {"", "rgb", "hsv", "cmyk", "hsl", "extended"};

/// The longest of them, and five words of four digits, each behind a blank.
constexpr std::size_t longestColor = 8 + 5 * 5;

/// The last `digits` hexadecimal digits of the number, from `to` on. Answers where they end.
char* writeHex(char* to, quint32 number, int digits)
{
    for (int place = digits - 1; place >= 0; --place) {
        *to++ = "0123456789abcdef"[number >> static_cast<unsigned int>(4 * place) & 0xfU];
    }
    return to;
}

ColorWords wordsOf(const QColor& value)
{
    if (value.spec() == QColor::Rgb) { // nearly all are, and it is much quicker
        const QRgba64 rgba = value.rgba64();
        return {rgba.alpha(), rgba.red(), rgba.green(), rgba.blue(), 0};
    }
    QByteArray raw;
    QDataStream writer(&raw, QIODevice::WriteOnly);
    writer << value;
    QDataStream stream(raw);
    qint8 model = 0;
    stream >> model;
    ColorWords words{};
    for (quint16& word : words) {
        stream >> word;
    }
    return words;
}

QString wordsText(const QColor& value)
{
    std::array<char, longestColor> text;
    const std::string_view model = colorModels.at(static_cast<std::size_t>(value.spec()));
    char* end = std::copy(model.begin(), model.end(), text.data());
    for (const quint16 word : wordsOf(value)) {
        *end++ = ' ';
        end = writeHex(end, word, 4);
    }
    return QString::fromLatin1(text.data(), static_cast<int>(end - text.data()));
}

int modelOf(const QString& name)
{
    for (std::size_t i = 1; i < colorModels.size(); ++i) {
        if (name == QLatin1String(colorModels[i].data(), static_cast<int>(colorModels[i].size()))) {
            return static_cast<int>(i);
        }
    }
    return 0;
}

/// Exactly `digits` hexadecimal digits and nothing else. False: `value` is unchanged.
bool parseHex(const QString& text, int digits, unsigned& value)
{
    const QByteArray bytes = text.toLatin1();
    const char* const end = bytes.constData() + bytes.size();
    unsigned number = 0;
    if (bytes.size() != digits || std::from_chars(bytes.constData(), end, number, 16).ptr != end) {
        return false;
    }
    value = number;
    return true;
}

bool parseWords(const QString& text, QColor& value)
{
    const QStringList parts = text.split(QLatin1Char(' '));
    const int model = modelOf(parts.first());
    if (model == 0 || parts.size() != 1 + static_cast<int>(ColorWords().size())) {
        return false;
    }
    QByteArray raw;
    QDataStream writer(&raw, QIODevice::WriteOnly);
    writer << static_cast<qint8>(model);
    for (int i = 1; i < parts.size(); ++i) {
        unsigned word = 0;
        if (!parseHex(parts[i], 4, word)) {
            return false;
        }
        writer << static_cast<quint16>(word);
    }
    QDataStream reader(raw);
    reader >> value;
    return true;
}

bool parseHexArgb(const QString& text, QColor& value)
{
    unsigned argb = 0;
    if (text[0] != QLatin1Char('#') || !parseHex(text.mid(1), 8, argb)) {
        return false;
    }
    value = QColor::fromRgba(argb);
    return true;
}

bool parseNamed(const QString& text, QColor& value)
{
    const QColor named(text);
    if (!named.isValid()) {
        return false;
    }
    value = named;
    return true;
}

} // namespace

namespace oru {

QString toString(bool value)
{
    return value ? QStringLiteral("true") : QStringLiteral("false");
}

QString toString(int value)
{
    return numbersText<1>(&value);
}

QString toString(float value)
{
    return numbersText<1>(&value);
}

QString toString(double value)
{
    return numbersText<1>(&value);
}

QString toString(const QColor& value)
{
    if (!value.isValid()) {
        return QString();
    }
    if (value == QColor::fromRgba(value.rgba())) {
        std::array<char, 9> text = {'#'};
        writeHex(text.data() + 1, value.rgba(), 8);
        return QString::fromLatin1(text.data(), static_cast<int>(text.size()));
    }
    return wordsText(value);
}

QString toString(const Kelvar::Math::Matrix& value)
{
    return numbersText<16>(value.data());
}

bool fromString(const QString& text, bool& value)
{
    const QString word = text.trimmed();
    const bool yes = word == QLatin1String("true") || word == QLatin1String("1");
    if (!yes && word != QLatin1String("false") && word != QLatin1String("0")) {
        return false;
    }
    value = yes;
    return true;
}

bool fromString(const QString& text, int& value)
{
    return parseNumber(text, value);
}

bool fromString(const QString& text, float& value)
{
    return parseNumber(text, value);
}

bool fromString(const QString& text, double& value)
{
    return parseNumber(text, value);
}

bool fromString(const QString& text, QColor& value)
{
    const QString word = text.trimmed();
    if (word.isEmpty()) {
        value = QColor();
        return true;
    }
    return parseHexArgb(word, value) || parseWords(word, value) || parseNamed(word, value);
}

bool fromString(const QString& text, Kelvar::Math::Matrix& value)
{
    const QByteArray bytes = text.trimmed().toLatin1();
    const char* from = bytes.constData();
    const char* const end = from + bytes.size();
    Kelvar::Math::Matrix read;
    for (int i = 0; i < 16 && from; ++i) {
        read.data()[i] = takeNumber<float>(from, end);
    }
    if (from != end) {
        return false;
    }
    value = read;
    return true;
}

} // namespace oru
