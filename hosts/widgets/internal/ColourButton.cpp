#include "hosts/widgets/internal/ColourButton.h"

#include "contracts/core/OruText.h"

#include <QColorDialog>
#include <QPixmap>

namespace hostkit {

ColourButton::ColourButton(QWidget* parent)
    : QToolButton(parent)
{
    setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    setAutoFillBackground(true);
    connect(this, &QToolButton::clicked, this, &ColourButton::choose);
}

void ColourButton::setStored(const QString& text)
{
    stored_ = text;
    QColor colour;
    oru::fromString(text, colour);
    QPixmap patch(iconSize());
    patch.fill(colour.isValid() ? colour : QColor(Qt::transparent));
    setIcon(patch);
    setText(text);
}

void ColourButton::choose()
{
    if (findChild<QColorDialog*>()) {
        return;
    }
    QColor colour;
    oru::fromString(stored_, colour);
    auto* const dialog = new QColorDialog(colour, this);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setOptions(QColorDialog::ShowAlphaChannel | QColorDialog::DontUseNativeDialog);
    connect(dialog, &QColorDialog::colorSelected, this, [this](const QColor& selected) {
        setStored(oru::toString(selected.toRgb()));
        Q_EMIT chosen();
    });
    dialog->open();
}

} // namespace hostkit
