#include "hosts/widgets/internal/ColorButton.h"

#include "contracts/core/OruText.h"

#include <QColorDialog>
#include <QPixmap>

namespace hostkit {

ColorButton::ColorButton(QWidget* parent)
    : QToolButton(parent)
{
    setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    setAutoFillBackground(true);
    connect(this, &QToolButton::clicked, this, &ColorButton::choose);
}

void ColorButton::setStored(const QString& text)
{
    stored_ = text;
    QColor color;
    oru::fromString(text, color);
    QPixmap patch(iconSize());
    patch.fill(color.isValid() ? color : QColor(Qt::transparent));
    setIcon(patch);
    setText(text);
}

void ColorButton::choose()
{
    if (findChild<QColorDialog*>()) {
        return;
    }
    QColor color;
    oru::fromString(stored_, color);
    auto* const dialog = new QColorDialog(color, this);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setOptions(QColorDialog::ShowAlphaChannel | QColorDialog::DontUseNativeDialog);
    connect(dialog, &QColorDialog::colorSelected, this, [this](const QColor& selected) {
        setStored(oru::toString(selected.toRgb()));
        Q_EMIT chosen();
    });
    dialog->open();
}

} // namespace hostkit
