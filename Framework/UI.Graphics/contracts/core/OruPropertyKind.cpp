#include "contracts/core/OruPropertyKind.h"

#include "contracts/core/OruText.h"

#include <QStringList>

#include <algorithm>
#include <array>
#include <cmath>

namespace {

/// What a property without limits and choices wants, by type.
constexpr std::array<const char*, 6> typeWords = {
    "any text",      "a whole number",       "a number",
    "true or false", "a color like #rrggbb", "16 numbers separated by blanks"};

/// A refused text is repeated on one line and no longer than that.
constexpr int longestQuote = 60;

QString quoted(const QString& text)
{
    QString line = text.left(longestQuote + 1).simplified();
    if (text.size() > longestQuote) {
        line = line.left(longestQuote) + QStringLiteral("...");
    }
    return QLatin1Char('"') + line + QLatin1Char('"');
}

bool allFinite(const Kelvar::Math::Matrix& matrix)
{
    return std::all_of(matrix.data(), matrix.data() + 16, [](float number) { return std::isfinite(number); });
}

/// Whether a text reads as a value of type T that meets a condition.
template <typename T, typename Condition>
bool reads(const QString& text, const Condition& condition)
{
    T value{};
    return oru::fromString(text, value) && condition(value);
}

} // namespace

bool OruPropertyKind::accepts(const QString& text, QString* reason) const
{
    if (holds(text) && (!onlyChoices_ || names(text))) {
        return true;
    }
    if (reason) {
        *reason = QStringLiteral("must be %1, not %2").arg(wanted(), quoted(text));
    }
    return false;
}

QString OruPropertyKind::wanted() const
{
    QStringList words;
    for (const Choice& choice : choices_) {
        words.append(QString::fromUtf8(choice.value) + QLatin1String(" (") + QString::fromUtf8(choice.text) +
                     QLatin1Char(')'));
    }
    const QString listed = words.join(QLatin1String(", "));
    if (onlyChoices_) {
        return QLatin1String("one of: ") + listed;
    }
    QString text = QLatin1String(typeWords[static_cast<std::size_t>(type_)]);
    if (hasMinimum()) {
        text += QLatin1String(" from ") + oru::toString(minimum_);
    }
    if (hasMaximum()) {
        text += QLatin1String(hasMinimum() ? " to " : " up to ") + oru::toString(maximum_);
    }
    return listed.isEmpty() ? text : text + QLatin1String(" such as ") + listed;
}

bool OruPropertyKind::holds(const QString& text) const
{
    const auto within = [this](double number) { return inRange(number); };
    const auto always = [](const auto&) { return true; };
    switch (type_) {
    case Type::WholeNumber:
        return reads<int>(text, within);
    case Type::Number:
        return reads<double>(text, within);
    case Type::Flag:
        return reads<bool>(text, always);
    case Type::Color:
        return reads<QColor>(text, always);
    case Type::Matrix:
        return reads<Kelvar::Math::Matrix>(text, allFinite);
    default:
        return true;
    }
}

bool OruPropertyKind::names(const QString& text) const
{
    const auto same = [&](const Choice& choice) {
        const QString value = QString::fromUtf8(choice.value);
        int listed = 0;
        return isWhole() ? oru::fromString(value, listed) &&
                               reads<int>(text, [&](int number) { return number == listed; })
                         : text == value;
    };
    return std::any_of(choices_.begin(), choices_.end(), same);
}
