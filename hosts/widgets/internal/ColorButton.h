#pragma once

#include <QToolButton>

namespace hostkit {

/// Edits a color: shows it, and a click opens a dialog to choose another one.
class ColorButton : public QToolButton
{
    Q_OBJECT
    Q_PROPERTY(QString stored READ stored WRITE setStored USER true)

public:
    explicit ColorButton(QWidget* parent);

    QString stored() const { return stored_; }
    void setStored(const QString& text);

    /// Opens the dialog.
    void choose();

Q_SIGNALS:
    /// A color was chosen in the dialog.
    void chosen();

private:
    QString stored_;
};

} // namespace hostkit
