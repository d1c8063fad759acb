#include "hosts/mesh/internal/MeasureText.h"

#include <QStringList>

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace hostkit {

using Kelvar::Math::NumberFormat;

MeasureText::MeasureText(const NumberFormat& format, const QString& unit)
    : format_(format)
    , unit_(unit)
{}

double MeasureText::length(const Point& from, const Point& to)
{
    return std::hypot(to[0] - from[0], to[1] - from[1], to[2] - from[2]);
}

int MeasureText::exponentOf(double value)
{
    const double size = std::abs(value);
    return size > 0.0 && std::isfinite(size) ? static_cast<int>(std::floor(std::log10(size))) : 0;
}

QString MeasureText::rounded(const NumberFormat& format, double value, int exponent)
{
    const double step = std::pow(10.0, exponent);
    const double shown = std::round(value / step) * step;
    const int digits = std::max(1, exponentOf(shown) - exponent + 1);
    const NumberFormat exact(format.decimalSeparator(), format.groupSeparator(), digits);
    return QString::fromLatin1(exact.format(shown).c_str());
}

/// Whole numbers are told in full.
int MeasureText::lastExponent(double longest) const
{
    const int digits = format_.significantDigits() > 0 ? format_.significantDigits() : usualDigits;
    return std::min(0, exponentOf(longest) - digits + 1);
}

QString MeasureText::ways(const QString& sign, const Point& from, const Point& to, int exponent) const
{
    QStringList texts;
    for (std::size_t axis = 0; axis < 3; ++axis) {
        texts.append(sign + QLatin1Char("xyz"[axis]) + QLatin1Char(' ') +
                     rounded(format_, to[axis] - from[axis], exponent));
    }
    return texts.join(QStringLiteral("   "));
}

QString MeasureText::withUnit(const QString& text) const
{
    return unit_.isEmpty() ? text : text + QLatin1Char(' ') + unit_;
}

QString MeasureText::distance(const Point& from, const Point& to) const
{
    const double whole = length(from, to);
    const int exponent = lastExponent(whole);
    return withUnit(rounded(format_, whole, exponent)) + QLatin1Char('\n') +
           ways(QStringLiteral("d"), from, to, exponent);
}

QString MeasureText::sizes(const Point& low, const Point& high) const
{
    const double longest = std::max({high[0] - low[0], high[1] - low[1], high[2] - low[2]});
    return withUnit(ways(QString(), low, high, lastExponent(longest)));
}

} // namespace hostkit
