#pragma once

#include <QDoubleSpinBox>

class OruPropertyKind;

namespace hostkit {

/// Edits a number, whole or not, within the limits of its kind. It reads and writes numbers as the tree does,
/// with as many digits as they need, in every locale.
class NumberBox : public QDoubleSpinBox
{
    Q_OBJECT
    Q_PROPERTY(QString stored READ stored WRITE setStored USER true)

public:
    NumberBox(const OruPropertyKind& kind, QWidget* parent);

    /// The text as it was set, to the letter, while nobody has changed it.
    QString stored() const;
    void setStored(const QString& text);

    void stepBy(int steps) override;
    QString textFromValue(double value) const override;
    double valueFromText(const QString& text) const override;
    QValidator::State validate(QString& text, int& position) const override;

private:
    double step() const;

    const OruPropertyKind& kind_;
    QString set_;
    QString shown_;
};

} // namespace hostkit
