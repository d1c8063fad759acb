#pragma once

#include <QComboBox>

class OruPropertyKind;

namespace hostkit {

/// Edits a property some of whose values have words, by a list of these. Where there are other values one may
/// be typed as well.
class ChoiceBox : public QComboBox
{
    Q_OBJECT
    Q_PROPERTY(QString stored READ stored WRITE setStored USER true)

public:
    ChoiceBox(const OruPropertyKind& kind, QWidget* parent);

    QString stored() const;
    void setStored(const QString& text);

private:
    /// Stays the value while none of the list is chosen.
    QString set_;
};

} // namespace hostkit
