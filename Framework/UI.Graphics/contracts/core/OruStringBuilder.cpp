#include "contracts/core/OruStringBuilder.h"

OruStringBuilder::OruStringBuilder(const Kelvar::Math::NumberFormat& format)
    : format_(format)
{}

QString OruStringBuilder::number(double value) const
{
    return QString::fromLatin1(format_.format(value).c_str());
}

QString OruStringBuilder::number(int value) const
{
    // An integer is shown whole, whatever the number of significant digits.
    const Kelvar::Math::NumberFormat whole(format_.decimalSeparator(), format_.groupSeparator(), -1);
    return QString::fromLatin1(whole.format(value).c_str());
}

QString OruStringBuilder::line(const QString& label, double value, const QString& unit) const
{
    return line(label, unit.isEmpty() ? number(value) : number(value) + QLatin1Char(' ') + unit);
}

QString OruStringBuilder::line(const QString& label, const QString& value) const
{
    return label + QLatin1String(": ") + value;
}
