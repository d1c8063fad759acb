#pragma once

#include <QToolButton>

namespace hostkit {

/// Edits a colour: shows it, and a click opens a dialog to choose another one.
class ColourButton : public QToolButton
{
    Q_OBJECT
    Q_PROPERTY(QString stored READ stored WRITE setStored USER true)

public:
    explicit ColourButton(QWidget* parent);

    QString stored() const { return stored_; }
    void setStored(const QString& text);

    /// Opens the dialog.
    void choose();

Q_SIGNALS:
    /// A colour was chosen in the dialog.
    void chosen();

private:
    QString stored_;
};

} // namespace hostkit
