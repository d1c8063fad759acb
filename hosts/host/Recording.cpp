#include "hosts/host/Recording.h"

#include "contracts/core/OruFileReader.h"
#include "contracts/core/OruMouse.h"
#include "hosts/host/InputNames.h"

#include <QLocale>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <optional>

namespace hostkit {

using Kind = InputEvent::Kind;

namespace {

const char* const magic = "kelvar-recording 1";
constexpr int mostPixels = 1 << 20;
constexpr int mostViewFractions = 1000000;
constexpr qint64 mostBytes = 256 << 20;
constexpr QChar quote = QLatin1Char('"');

/// What a line of each kind says behind its word, in this order.
enum Part : unsigned int
{
    ButtonPart = 1,
    AmountPart = 2,
    KeyPart = 4,
    ModifiersPart = 8,
    PlacePart = 16
};

struct KindName
{
    const char* name;
    Kind kind;
    unsigned int parts;
};

constexpr std::array<KindName, 16> kindNames = {{
    {"press", Kind::Press, ButtonPart | ModifiersPart | PlacePart},
    {"release", Kind::Release, ButtonPart | ModifiersPart | PlacePart},
    {"click", Kind::Click, 0},
    {"double-click", Kind::DoubleClick, 0},
    {"move", Kind::Move, ModifiersPart | PlacePart},
    {"wheel", Kind::Wheel, AmountPart | ModifiersPart | PlacePart},
    {"pinch", Kind::Pinch, AmountPart | PlacePart},
    {"turn", Kind::Turn, AmountPart | PlacePart},
    {"key", Kind::KeyPress, KeyPart | ModifiersPart},
    {"key-up", Kind::KeyRelease, KeyPart | ModifiersPart},
    {"focus-in", Kind::FocusIn, 0},
    {"focus-out", Kind::FocusOut, 0},
    {"enter", Kind::Enter, 0},
    {"leave", Kind::Leave, 0},
    {"cancel", Kind::Cancel, 0},
    {"abort", Kind::Abort, 0},
}};

QString modifierText(unsigned int word)
{
    QStringList names;
    unsigned int named = 0;
    for (const InputNames::Modifier& row : InputNames::modifiers) {
        if (word & row.bit) {
            names.append(QLatin1String(row.name));
            named |= row.bit;
        }
    }
    if (word != named) {
        return QString::number(word);
    }
    return names.isEmpty() ? QStringLiteral("-") : names.join(QLatin1Char('+'));
}

/// The middle of a pixel as a share of the view; pixelAt is its inverse.
QString shareText(int pixel, int pixels)
{
    return QString::number((pixel + 0.5) / pixels, 'g', std::numeric_limits<double>::max_digits10);
}

/// Whether a text could not be told from others if it stood in a line as it is.
bool needsQuotes(const QString& text)
{
    const bool broken =
        std::any_of(text.begin(), text.end(), [](QChar c) { return c.category() == QChar::Other_Control; });
    return broken || text.startsWith(quote) || text.trimmed() != text ||
           QString::fromUtf8(text.toUtf8()) != text;
}

/// A text on one line: as it is, or in quotes with escapes; Parser::text is the inverse.
QString lineText(const QString& text)
{
    if (!needsQuotes(text)) {
        return text;
    }
    QString line = quote;
    for (const QChar c : text) {
        if (c.category() == QChar::Other_Control || c.isSurrogate()) {
            line += QStringLiteral("\\u%1").arg(static_cast<int>(c.unicode()), 4, 16, QLatin1Char('0'));
        } else {
            line += c == quote || c == QLatin1Char('\\') ? QLatin1Char('\\') + QString(c) : QString(c);
        }
    }
    return line + quote;
}

int pixelAt(double share, int pixels)
{
    return static_cast<int>(std::floor(share * pixels));
}

} // namespace

/// Reads a text line by line and knows where it is.
class Recording::Parser
{
public:
    Parser(const QByteArray& text, const QString& name)
        : lines_(text.split('\n'))
        , name_(name)
    {}

    Recording run()
    {
        if (lines_.isEmpty() || lines_[0].trimmed() != magic) {
            fail(QStringLiteral("not a recording: the first line is not \"%1\"").arg(QLatin1String(magic)));
        }
        for (line_ = 1; line_ < lines_.size(); ++line_) {
            const QByteArray text = lines_[line_].trimmed();
            if (!text.isEmpty() && !text.startsWith('#')) {
                readLine(QString::fromUtf8(text));
            }
        }
        if (recording_.size.isEmpty()) {
            fail(QStringLiteral("there is no size"));
        }
        return recording_;
    }

private:
    [[noreturn]] void fail(const QString& reason) const
    {
        const int line = std::min<int>(line_ + 1, lines_.size());
        throw Error(QStringLiteral("%1:%2: %3").arg(name_, QString::number(line), reason).toStdString());
    }

    void readLine(const QString& text)
    {
        const int blank = text.indexOf(QLatin1Char(' '));
        const QString word = blank < 0 ? text : text.left(blank);
        const QString rest = blank < 0 ? QString() : text.mid(blank + 1).trimmed();
        const auto kind = std::find_if(kindNames.begin(), kindNames.end(),
                                       [&](const KindName& row) { return word == QLatin1String(row.name); });
        if (kind != kindNames.end()) {
            readEvent(*kind, rest.isEmpty() ? QStringList() : rest.simplified().split(QLatin1Char(' ')));
        } else {
            readHead(word, rest);
        }
    }

    void readHead(const QString& word, const QString& rest)
    {
        if (word == QLatin1String("size")) {
            readSize(rest);
        } else if (word == QLatin1String("model")) {
            recording_.models.append(text(rest));
        } else if (word == QLatin1String("position")) {
            recording_.position = text(rest);
        } else if (word == QLatin1String("edges")) {
            recording_.edges = text(rest);
        } else if (word == QLatin1String("set")) {
            readSetting(text(rest));
        } else {
            fail(QStringLiteral("\"%1\" is no event").arg(word));
        }
    }

    void readSetting(const QString& text)
    {
        const auto setting = InputNames::assignment(text);
        if (!setting) {
            fail(QStringLiteral("\"%1\" is not of the form path/key=value").arg(text));
        }
        recording_.settings.push_back(*setting);
    }

    void readSize(const QString& rest)
    {
        const std::optional<QSize> sides = InputNames::size(rest, mostPixels);
        if (!sides) {
            fail(QStringLiteral("\"%1\" is not a size such as 1280x800").arg(rest));
        }
        recording_.size = *sides;
    }

    /// What lineText made a line of.
    QString text(const QString& line) const
    {
        if (!line.startsWith(quote)) {
            return line;
        }
        QString result;
        int at = 1;
        while (at < line.size() && line[at] != quote) {
            result += line[at] == QLatin1Char('\\') ? escaped(line, at) : line[at];
            ++at;
        }
        if (at != line.size() - 1) {
            fail(
                QStringLiteral("a text that starts with a quote ends with the next one; write \\\" for one"));
        }
        return result;
    }

    /// The character of the escape at `at`, which then is at its end; beyond the line if that ends first.
    QChar escaped(const QString& line, int& at) const
    {
        ++at;
        if (line.mid(at, 1) != QLatin1String("u")) {
            return at < line.size() ? line[at] : quote;
        }
        bool good = false;
        const ushort code = line.mid(at + 1, 4).toUShort(&good, 16);
        if (!good) {
            fail(QStringLiteral("\\u stands before four hexadecimal digits"));
        }
        at += 4;
        return QChar(code);
    }

    void readEvent(const KindName& kind, QStringList words)
    {
        Step step;
        step.event.kind = kind.kind;
        if (kind.parts & ButtonPart) {
            step.event.button = button(next(words, "a button"));
        }
        if (kind.parts & AmountPart) {
            step.event.amount = amount(kind.kind, next(words, "a number"));
        }
        if (kind.parts & KeyPart) {
            step.event.amount = key(next(words, "a key"));
        }
        if (kind.parts & ModifiersPart) {
            step.event.modifiers = modifiers(next(words, "modifiers"));
        }
        if (kind.parts & PlacePart) {
            const double x = share(next(words, "a position"));
            step.place = QPointF(x, share(next(words, "a position")));
        }
        if (!words.isEmpty()) {
            fail(QStringLiteral("\"%1\" is too much").arg(words.first()));
        }
        recording_.steps_.push_back(step);
    }

    QString next(QStringList& words, const char* what) const
    {
        if (words.isEmpty()) {
            fail(QStringLiteral("%1 is missing").arg(QLatin1String(what)));
        }
        return words.takeFirst();
    }

    int wholeNumber(const QString& text) const
    {
        bool good = false;
        const int number = text.toInt(&good);
        if (!good) {
            fail(QStringLiteral("\"%1\" is no whole number").arg(text));
        }
        return number;
    }

    OruMouse::Button button(const QString& text) const
    {
        const std::optional<OruMouse::Button> button = InputNames::button(text);
        if (!button) {
            fail(QStringLiteral("\"%1\" is no button; there are %2")
                     .arg(text, InputNames::buttonList(QStringLiteral("and"))));
        }
        return *button;
    }

    /// Steps of the wheel, the factor of a pinch, the degrees of a turn.
    double amount(Kind kind, const QString& text) const
    {
        bool good = false;
        InputEvent event;
        event.kind = kind;
        event.amount = text.toDouble(&good);
        if (!good || !event.possible()) {
            fail(QStringLiteral("\"%1\" is not how far a wheel or two fingers turn").arg(text));
        }
        return event.amount;
    }

    int key(const QString& text) const
    {
        const std::optional<int> key = InputNames::key(text);
        if (!key) {
            fail(QStringLiteral("\"%1\" is no key, neither a letter nor a whole number").arg(text));
        }
        return *key;
    }

    unsigned int modifiers(const QString& text) const
    {
        if (text == QLatin1String("-")) {
            return 0;
        }
        if (text[0].isDigit()) {
            return static_cast<unsigned int>(wholeNumber(text));
        }
        unsigned int word = 0;
        const QStringList names = text.split(QLatin1Char('+'));
        for (const QString& name : names) {
            const std::optional<unsigned int> bit = InputNames::modifier(name);
            if (!bit) {
                fail(QStringLiteral("\"%1\" is no modifier").arg(name));
            }
            word |= *bit;
        }
        return word;
    }

    double share(const QString& text) const
    {
        bool good = false;
        const double number = text.toDouble(&good);
        if (!good || !(std::abs(number) <= mostViewFractions)) {
            fail(QStringLiteral("\"%1\" is no position in a view").arg(text));
        }
        return number;
    }

    QList<QByteArray> lines_;
    QString name_;
    int line_ = 0;
    Recording recording_;
};

Recording Recording::read(const QString& file)
{
    QByteArray text;
    QString reason;
    if (!OruFileReader::read(file, mostBytes, text, reason)) {
        throw Error(QStringLiteral("%1: %2")
                        .arg(file, reason.isEmpty() ? QStringLiteral("too large for a recording") : reason)
                        .toStdString());
    }
    return parse(text, file);
}

Recording Recording::parse(const QByteArray& text, const QString& name)
{
    return Parser(text, name).run();
}

QByteArray Recording::head() const
{
    QString text =
        QStringLiteral("%1\nsize %2x%3\n").arg(QLatin1String(magic)).arg(size.width()).arg(size.height());
    for (const QString& model : models) {
        text += QStringLiteral("model %1\n").arg(lineText(model));
    }
    if (!position.isEmpty()) {
        text += QStringLiteral("position %1\n").arg(lineText(position));
    }
    if (!edges.isEmpty()) {
        text += QStringLiteral("edges %1\n").arg(lineText(edges));
    }
    for (const auto& setting : settings) {
        text += QStringLiteral("set %1\n").arg(lineText(setting.first + QLatin1Char('=') + setting.second));
    }
    return text.toUtf8();
}

QByteArray Recording::line(const InputEvent& event, const QSize& view)
{
    QStringList words;
    for (const KindName& row : kindNames) {
        if (row.kind != event.kind) {
            continue;
        }
        words.append(QLatin1String(row.name));
        if (row.parts & ButtonPart) {
            words.append(InputNames::nameOf(event.button));
        }
        if (row.parts & AmountPart) {
            words.append(QString::number(event.amount, 'g', QLocale::FloatingPointShortest));
        }
        if (row.parts & KeyPart) {
            words.append(InputNames::keyText(static_cast<int>(event.amount)));
        }
        if (row.parts & ModifiersPart) {
            words.append(modifierText(event.modifiers));
        }
        if (row.parts & PlacePart) {
            words.append(shareText(event.pixel.x(), view.width()));
            words.append(shareText(event.pixel.y(), view.height()));
        }
    }
    return words.join(QLatin1Char(' ')).toUtf8() + '\n';
}

std::vector<InputEvent> Recording::events(const QSize& view) const
{
    std::vector<InputEvent> events;
    events.reserve(steps_.size());
    for (const Step& step : steps_) {
        events.push_back(step.event);
        events.back().pixel =
            QPoint(pixelAt(step.place.x(), view.width()), pixelAt(step.place.y(), view.height()));
    }
    return events;
}

} // namespace hostkit
