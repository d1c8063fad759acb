#include "contracts/core/internal/OruPropertiesReader.h"

#include "contracts/core/internal/OruJson.h"
#include "contracts/core/internal/OruPropertiesCheck.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <functional>
#include <iterator>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

namespace {

constexpr char ending = '\0';

bool isBlank(char character)
{
    return character == ' ' || character == '\n' || character == '\r' || character == '\t';
}

/// What stands for the character behind a backslash; `ending` for what the general way reads.
char meant(char escape)
{
    constexpr std::string_view escapes = "\"\\/bfnrt";
    constexpr std::string_view meanings = "\"\\/\b\f\n\r\t";
    const std::size_t found = escapes.find(escape);
    return found == std::string_view::npos ? ending : meanings[found];
}

/// False: it is not all UTF-8, has escapes that the general way reads, or a byte order mark in front, which
/// would be lost and which that way refuses.
bool decode(std::string_view bytes, QString& text)
{
    const std::string_view mark(oru::byteOrderMark);
    if (bytes.substr(0, mark.size()) == mark) {
        return false;
    }
    std::string plain;
    if (bytes.find('\\') != std::string_view::npos) {
        for (std::size_t i = 0; i < bytes.size(); ++i) {
            const bool escaped = bytes[i] == '\\';
            i += escaped ? 1 : 0;
            plain += escaped ? meant(bytes[i]) : bytes[i];
        }
        bytes = plain;
    }
    text = QString::fromUtf8(bytes.data(), static_cast<int>(bytes.size()));
    return bytes.find(ending) == std::string_view::npos && !text.contains(QChar::ReplacementCharacter);
}

} // namespace

OruPropertiesReader::OruPropertiesReader(const QByteArray& text, int maximumDepth)
    : at_(text.constData())
    , end_(at_ + text.size())
    , levelsLeft_(maximumDepth)
{}

bool OruPropertiesReader::read(Plan& tree, int version)
{
    QString format;
    int fileVersion = 0;
    int members = 0;
    const bool object = readObject([&](std::string_view name) {
        ++members;
        return name == "format"    ? readWord(format)
               : name == "version" ? readNumber(fileVersion, version)
                                   : name == "tree" && readNode(tree);
    });
    return object && members == 3 && format == OruPropertiesCheck::format() && fileVersion > 0 &&
           !tree.name.isNull() && next() == ending && at_ == end_;
}

/// `member` reads the value of the member that it is given the name of, and answers whether it could.
template <typename Member>
bool OruPropertiesReader::readObject(Member member)
{
    bool more = take('{');
    bool good = more;
    while (good && more) {
        std::string_view name;
        good = readString(name) && take(':') && member(name) && takeEnd('}', more);
    }
    return good;
}

bool OruPropertiesReader::readNode(Plan& node)
{
    static constexpr struct
    {
        std::string_view name;
        bool (OruPropertiesReader::*read)(Plan& node);
    } known[] = {{"name", &OruPropertiesReader::readName},
                 {"type", &OruPropertiesReader::readType},
                 {"flags", &OruPropertiesReader::readFlags},
                 {"values", &OruPropertiesReader::readValues},
                 {"children", &OruPropertiesReader::readChildren}};
    std::array<bool, std::size(known)> seen{};
    return readObject([&](std::string_view name) {
        const auto row = std::find_if(std::begin(known), std::end(known),
                                      [name](const auto& candidate) { return candidate.name == name; });
        const auto index = static_cast<std::size_t>(row - std::begin(known));
        if (row == std::end(known) || seen[index]) {
            return false;
        }
        seen[index] = true;
        return (this->*row->read)(node);
    });
}

bool OruPropertiesReader::readFlags(Plan& node)
{
    return readNumber(node.flags, 0xffff);
}

/// They are merged in the order of their keys.
bool OruPropertiesReader::readValues(Plan& node)
{
    std::vector<Plan::Value>& values = node.values;
    values.reserve(valueCount_);
    const bool object = readObject([&](std::string_view name) {
        values.emplace_back();
        return takeWord(name, values.back().key) && readValue(values.back());
    });
    valueCount_ = values.size();
    const auto ahead = [](const Plan::Value& a, const Plan::Value& b) { return a.key < b.key; };
    const auto same = [](const Plan::Value& a, const Plan::Value& b) { return a.key == b.key; };
    if (object && !std::is_sorted(values.begin(), values.end(), ahead)) {
        std::sort(values.begin(), values.end(), ahead);
    }
    return object && std::adjacent_find(values.begin(), values.end(), same) == values.end();
}

bool OruPropertiesReader::readValue(Plan::Value& value)
{
    if (next() == '"') {
        return readWord(value.text);
    }
    int members = 0;
    const bool object = readObject([&](std::string_view name) {
        ++members;
        return name == "value" ? readWord(value.text) : name == "unit" && readWord(value.unit);
    });
    return object && members == 2 && !value.text.isNull() && !value.unit.isNull();
}

bool OruPropertiesReader::readChildren(Plan& node)
{
    bool more = take('[') && levelsLeft_ > 0;
    bool good = more;
    --levelsLeft_;
    while (good && more) {
        node.children.emplace_back();
        Plan& child = node.children.back();
        good = readNode(child) && !child.name.isNull() && takeEnd(']', more);
    }
    ++levelsLeft_;
    return good;
}

/// A whole number from 0.
bool OruPropertiesReader::readNumber(int& number, int largest)
{
    const char first = next();
    const std::from_chars_result read = std::from_chars(at_, end_, number);
    const bool plain = first >= '0' && first <= '9' && (first != '0' || read.ptr == at_ + 1);
    at_ = read.ptr;
    return plain && read.ec == std::errc() && number <= largest;
}

/// What stands between the quotes.
bool OruPropertiesReader::readString(std::string_view& bytes)
{
    if (!take('"')) {
        return false;
    }
    const char* const start = at_;
    while (at_ < end_ && *at_ != '"') {
        if (static_cast<unsigned char>(*at_) < ' ') {
            return false;
        }
        at_ += *at_ == '\\' ? 2 : 1;
    }
    if (at_ >= end_) {
        return false;
    }
    bytes = std::string_view(start, static_cast<std::size_t>(at_ - start));
    ++at_;
    return true;
}

bool OruPropertiesReader::readText(QString& text)
{
    std::string_view bytes;
    return readString(bytes) && decode(bytes, text);
}

bool OruPropertiesReader::readWord(QString& word)
{
    std::string_view bytes;
    return readString(bytes) && takeWord(bytes, word);
}

bool OruPropertiesReader::takeWord(std::string_view bytes, QString& word)
{
    Word& known = words_[std::hash<std::string_view>()(bytes) % words_.size()];
    if (known.text.isNull() || known.bytes != bytes) {
        if (!decode(bytes, known.text)) {
            return false;
        }
        known.bytes = bytes;
    }
    word = known.text;
    return true;
}

/// The next character that is no blank, without taking it.
char OruPropertiesReader::next()
{
    while (at_ != end_ && isBlank(*at_)) {
        ++at_;
    }
    return at_ != end_ ? *at_ : ending;
}

bool OruPropertiesReader::take(char character)
{
    const bool there = next() == character;
    at_ += there ? 1 : 0;
    return there;
}

/// Behind an element: takes a comma, and `more` becomes true, or `closing`.
bool OruPropertiesReader::takeEnd(char closing, bool& more)
{
    more = take(',');
    return more || take(closing);
}
