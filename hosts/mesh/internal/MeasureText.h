#pragma once

#include "contracts/math/NumberFormat.h"
#include "hosts/mesh/Point.h"

#include <QString>

namespace hostkit {

/// What was measured as text for people: as many digits as the format asks for, or else `usualDigits`, of
/// the longest length; the others end at the same place.
class MeasureText
{
public:
    static constexpr int usualDigits = 5;

    /// `unit` may be empty.
    MeasureText(const Kelvar::Math::NumberFormat& format, const QString& unit);

    /// The length in one line, the ways along the axes in a second.
    QString distance(const Point& from, const Point& to) const;

    /// The edges of a box in one line.
    QString sizes(const Point& low, const Point& high) const;

    static double length(const Point& from, const Point& to);

    /// A number without the digits behind those of `exponent`: -2 for hundredths.
    static QString rounded(const Kelvar::Math::NumberFormat& format, double value, int exponent);

    /// Of the first digit: 0 for 1 to 9, 2 for some hundreds.
    static int exponentOf(double value);

private:
    int lastExponent(double longest) const;
    QString ways(const QString& sign, const Point& from, const Point& to, int exponent) const;
    QString withUnit(const QString& text) const;

    Kelvar::Math::NumberFormat format_;
    QString unit_;
};

} // namespace hostkit
