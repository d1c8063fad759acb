#include "hosts/host/InputNames.h"

#include <QStringList>

#include <algorithm>

namespace hostkit {

using Kind = InputEvent::Kind;

namespace {

/// What a person does ahead of the modifiers and the name of a button or key.
struct KindWord
{
    Kind kind;
    const char* word;
};

constexpr std::array<KindWord, 6> kindWords = {{
    {Kind::Move, "drag "},
    {Kind::Click, "click "},
    {Kind::Wheel, "wheel"},
    {Kind::Pinch, "two fingers apart"},
    {Kind::Turn, "two fingers turning"},
    {Kind::Abort, "Esc"},
}};

/// Two whole numbers with a separator in between.
std::optional<std::pair<int, int>> numbers(const QString& text, QChar separator)
{
    const QStringList parts = text.split(separator);
    bool good[2] = {false, false};
    std::pair<int, int> pair;
    if (parts.size() == 2) {
        pair = {parts[0].toInt(&good[0]), parts[1].toInt(&good[1])};
    }
    return good[0] && good[1] ? std::make_optional(pair) : std::nullopt;
}

QString listOf(QStringList names, const QString& word)
{
    const QString last = names.takeLast();
    return QStringLiteral("%1 %2 %3").arg(names.join(QStringLiteral(", ")), word, last);
}

/// "Ctrl+" for each modifier.
QString prefix(unsigned int bits)
{
    QString text;
    for (const InputNames::Modifier& row : InputNames::modifiers) {
        if (bits & row.bit) {
            const QString name = QLatin1String(row.name);
            text += name.left(1).toUpper() + name.mid(1) + QLatin1Char('+');
        }
    }
    return text;
}

} // namespace

QString InputNames::text(const Gesture& gesture)
{
    const bool pressed = gesture.kind == Kind::Move || gesture.kind == Kind::Click;
    QString text;
    for (const KindWord& row : kindWords) {
        text += row.kind == gesture.kind ? QLatin1String(row.word) : QLatin1String();
    }
    text += prefix(gesture.modifiers);
    text += pressed ? nameOf(gesture.button) : QString();
    text += gesture.kind == Kind::KeyPress ? keyText(gesture.key) : QString();
    return text;
}

std::optional<OruMouse::Button> InputNames::button(const QString& name)
{
    for (const Button& row : buttons) {
        if (std::any_of(row.names.begin(), row.names.end(),
                        [&](const char* each) { return name == QLatin1String(each); })) {
            return row.button;
        }
    }
    return std::nullopt;
}

QString InputNames::nameOf(OruMouse::Button button)
{
    for (const Button& row : buttons) {
        if (row.button == button) {
            return QLatin1String(row.names[0]);
        }
    }
    return QString::number(button);
}

std::optional<unsigned int> InputNames::modifier(const QString& name)
{
    for (const Modifier& row : modifiers) {
        if (name == QLatin1String(row.name)) {
            return row.bit;
        }
    }
    return std::nullopt;
}

unsigned int InputNames::bitsOf(Qt::KeyboardModifiers held)
{
    unsigned int bits = 0;
    for (const Modifier& row : modifiers) {
        bits |= held.testFlag(row.qt) ? row.bit : 0;
    }
    return bits;
}

std::optional<int> InputNames::key(const QString& text)
{
    if (text.size() == 1 && !text[0].isDigit()) {
        return text[0].unicode();
    }
    bool good = false;
    const int number = text.toInt(&good);
    return good ? std::make_optional(number) : std::nullopt;
}

QString InputNames::keyText(int key)
{
    return key >= 'A' && key <= 'Z' ? QString(QLatin1Char(static_cast<char>(key))) : QString::number(key);
}

QString InputNames::buttonList(const QString& word)
{
    QStringList names;
    for (const Button& row : buttons) {
        names.append(QLatin1String(row.names[0]));
    }
    return listOf(names, word);
}

QString InputNames::modifierList(unsigned int bits, const QString& word)
{
    QStringList names;
    for (const Modifier& row : modifiers) {
        if (bits & row.bit) {
            names.append(QLatin1String(row.name));
        }
    }
    return listOf(names, word);
}

std::optional<QSize> InputNames::size(const QString& text, int most)
{
    const auto sides = numbers(text, QLatin1Char('x'));
    if (!sides || std::min(sides->first, sides->second) < 1 || std::max(sides->first, sides->second) > most) {
        return std::nullopt;
    }
    return QSize(sides->first, sides->second);
}

std::optional<QPoint> InputNames::point(const QString& text)
{
    const auto place = numbers(text, QLatin1Char(','));
    return place ? std::make_optional(QPoint(place->first, place->second)) : std::nullopt;
}

std::optional<std::pair<QString, QString>> InputNames::assignment(const QString& text)
{
    const int equals = static_cast<int>(text.indexOf(QLatin1Char('=')));
    if (equals < 1) {
        return std::nullopt;
    }
    return std::make_pair(text.left(equals), text.mid(equals + 1));
}

} // namespace hostkit
