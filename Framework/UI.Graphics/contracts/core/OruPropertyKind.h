#pragma once

#include "contracts/core/kelvar_core_api.h"
#include "contracts/math/Matrix.h"

#include <QColor>
#include <QString>

#include <cstddef>
#include <limits>

/// What a property holds: how its text reads, and which values make sense.
///
/// A kind is a constant that all nodes with such a property share; it and its choices must outlive them:
///
///     constexpr OruPropertyKind::Choice units[] = {{"0", "pixels"}, {"1", "percent"}};
///     constexpr OruPropertyKind unitKind = OruPropertyKind::of<int>().oneOf(units);
///     constexpr OruPropertyKind heightKind = OruPropertyKind::of<float>().from(0.0);
///
/// Whoever changes a property for a person asks accepts() first; the store itself takes any text.
class KELVAR_CORE_API OruPropertyKind
{
public:
    enum class Type
    {
        Text,
        WholeNumber,
        Number,
        Flag,
        Color,
        Matrix
    };

    /// A value as it is stored, and words for it; both are UTF-8.
    struct Choice
    {
        const char* value;
        const char* text;
    };

    /// A table of choices, to be iterated.
    struct Choices
    {
        const Choice* first = nullptr;
        std::size_t count = 0;

        constexpr const Choice* begin() const { return first; }
        constexpr const Choice* end() const { return first + count; }
        constexpr bool empty() const { return count == 0; }
    };

    /// All that a property of type T can hold: bool, int, float, double, QString, QColor or Matrix. Numbers
    /// are finite ones, those of a matrix, too.
    template <typename T>
    static constexpr OruPropertyKind of();

    /// The same without the numbers below `smallest`, or above `largest`.
    constexpr OruPropertyKind from(double smallest) const;
    constexpr OruPropertyKind to(double largest) const;

    /// The same with just these values.
    template <std::size_t Count>
    constexpr OruPropertyKind oneOf(const Choice (&table)[Count]) const;

    /// The same with words for some of the values.
    template <std::size_t Count>
    constexpr OruPropertyKind naming(const Choice (&table)[Count]) const;

    constexpr Type type() const { return type_; }

    /// The limits of a number, both included. Where it has none of its own they are those of its type.
    constexpr double minimum() const { return minimum_; }
    constexpr double maximum() const { return maximum_; }
    constexpr bool hasMinimum() const { return minimum_ > (isWhole() ? lowestInt : -largestFloat); }
    constexpr bool hasMaximum() const { return maximum_ < (isWhole() ? largestInt : largestFloat); }

    /// The values that have words, if there are any. If onlyChoices(), there are no others.
    constexpr const Choices& choices() const { return choices_; }
    constexpr bool onlyChoices() const { return onlyChoices_; }

    /// Whether a property of this kind can have this text. If not, `reason` (null: nobody asks) becomes the
    /// second half of a sentence, such as `must be a number from 0 to 1, not "2"`.
    bool accepts(const QString& text, QString* reason = nullptr) const;

    /// What accepts() wants, such as "a number from 0 to 1", "true or false" or "one of: 0 (pixels), ...".
    QString wanted() const;

private:
    static constexpr double unlimited = std::numeric_limits<double>::infinity();
    static constexpr double largestFloat = std::numeric_limits<float>::max();
    static constexpr double lowestInt = std::numeric_limits<int>::min();
    static constexpr double largestInt = std::numeric_limits<int>::max();

    constexpr explicit OruPropertyKind(Type type, double minimum = -unlimited, double maximum = unlimited)
        : type_(type)
        , minimum_(minimum)
        , maximum_(maximum)
    {}

    constexpr bool isWhole() const { return type_ == Type::WholeNumber; }
    constexpr OruPropertyKind with(const Choices& choices, bool only) const;
    bool inRange(double number) const { return number >= minimum_ && number <= maximum_; }
    bool holds(const QString& text) const;
    bool names(const QString& text) const;

    Type type_;
    bool onlyChoices_ = false;
    double minimum_;
    double maximum_;
    Choices choices_;
};

template <>
constexpr OruPropertyKind OruPropertyKind::of<QString>()
{
    return OruPropertyKind(Type::Text);
}

template <>
constexpr OruPropertyKind OruPropertyKind::of<int>()
{
    return OruPropertyKind(Type::WholeNumber, lowestInt, largestInt);
}

template <>
constexpr OruPropertyKind OruPropertyKind::of<float>()
{
    return OruPropertyKind(Type::Number, -largestFloat, largestFloat);
}

template <>
constexpr OruPropertyKind OruPropertyKind::of<double>()
{
    constexpr double largest = std::numeric_limits<double>::max();
    return OruPropertyKind(Type::Number, -largest, largest);
}

template <>
constexpr OruPropertyKind OruPropertyKind::of<bool>()
{
    return OruPropertyKind(Type::Flag);
}

template <>
constexpr OruPropertyKind OruPropertyKind::of<QColor>()
{
    return OruPropertyKind(Type::Color);
}

template <>
constexpr OruPropertyKind OruPropertyKind::of<Kelvar::Math::Matrix>()
{
    return OruPropertyKind(Type::Matrix);
}

constexpr OruPropertyKind OruPropertyKind::from(double smallest) const
{
    OruPropertyKind kind = *this;
    kind.minimum_ = smallest;
    return kind;
}

constexpr OruPropertyKind OruPropertyKind::to(double largest) const
{
    OruPropertyKind kind = *this;
    kind.maximum_ = largest;
    return kind;
}

constexpr OruPropertyKind OruPropertyKind::with(const Choices& choices, bool only) const
{
    OruPropertyKind kind = *this;
    kind.choices_ = choices;
    kind.onlyChoices_ = only;
    return kind;
}

template <std::size_t Count>
constexpr OruPropertyKind OruPropertyKind::oneOf(const Choice (&table)[Count]) const
{
    return with(Choices{table, Count}, true);
}

template <std::size_t Count>
constexpr OruPropertyKind OruPropertyKind::naming(const Choice (&table)[Count]) const
{
    return with(Choices{table, Count}, false);
}
