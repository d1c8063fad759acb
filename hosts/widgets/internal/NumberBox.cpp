#include "hosts/widgets/internal/NumberBox.h"

#include "contracts/core/OruPropertyKind.h"
#include "contracts/core/OruText.h"

#include <QLineEdit>

#include <algorithm>
#include <cmath>

namespace hostkit {

namespace {

/// More than any number of type double has.
constexpr int allDecimals = 323;

bool isWhole(const OruPropertyKind& kind)
{
    return kind.type() == OruPropertyKind::Type::WholeNumber;
}

} // namespace

NumberBox::NumberBox(const OruPropertyKind& kind, QWidget* parent)
    : QDoubleSpinBox(parent)
    , kind_(kind)
{
    setDecimals(isWhole(kind) ? 0 : allDecimals);
    setRange(kind.minimum(), kind.maximum());
    setFrame(false);
}

QString NumberBox::stored() const
{
    const QString typed = lineEdit()->text();
    return typed == shown_ ? set_ : typed.trimmed();
}

void NumberBox::setStored(const QString& text)
{
    set_ = text;
    setValue(valueFromText(text));
    shown_ = lineEdit()->text();
}

/// A hundredth of a range that has both ends, else a tenth of the number's own size.
double NumberBox::step() const
{
    if (isWhole(kind_)) {
        return 1.0;
    }
    if (kind_.hasMinimum() && kind_.hasMaximum()) {
        return (kind_.maximum() - kind_.minimum()) / 100.0;
    }
    return value() == 0.0 ? 0.1 : std::pow(10.0, std::floor(std::log10(std::abs(value()))) - 1.0);
}

/// Sums of tenths end in digits that nobody asked for; those behind the tenth are cut.
void NumberBox::stepBy(int steps)
{
    const double sum = value() + steps * step();
    const double plain = QString::number(sum, 'g', 10).toDouble();
    setValue(std::abs(plain) < step() / 1000.0 ? 0.0 : plain);
    selectAll();
}

QString NumberBox::textFromValue(double value) const
{
    return oru::toString(value);
}

double NumberBox::valueFromText(const QString& text) const
{
    double value = 0.0;
    oru::fromString(text, value);
    return value;
}

QValidator::State NumberBox::validate(QString& text, int&) const
{
    return kind_.accepts(text) ? QValidator::Acceptable : QValidator::Intermediate;
}

} // namespace hostkit
