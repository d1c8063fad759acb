#pragma once

#include "contracts/core/kelvar_core_api.h"
#include "contracts/math/NumberFormat.h"

#include <QString>

/// Builds texts that people read, such as tooltips, with numbers in the scene's number format.
///
/// A small value that changes nothing; for texts that are read back use OruText.h.
class KELVAR_CORE_API OruStringBuilder
{
public:
    explicit OruStringBuilder(const Kelvar::Math::NumberFormat& format);

    const Kelvar::Math::NumberFormat& format() const { return format_; }

    QString number(double value) const;
    QString number(int value) const;

    /// "label: value unit"; an empty unit leaves no blank.
    QString line(const QString& label, double value, const QString& unit) const;
    QString line(const QString& label, const QString& value) const;

private:
    Kelvar::Math::NumberFormat format_;
};
