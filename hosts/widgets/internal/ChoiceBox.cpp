#include "hosts/widgets/internal/ChoiceBox.h"

#include "contracts/core/OruPropertyKind.h"

namespace hostkit {

ChoiceBox::ChoiceBox(const OruPropertyKind& kind, QWidget* parent)
    : QComboBox(parent)
{
    setEditable(!kind.onlyChoices());
    setInsertPolicy(NoInsert);
    setFrame(false);
    for (const OruPropertyKind::Choice& choice : kind.choices()) {
        addItem(QString::fromUtf8(choice.text), QString::fromUtf8(choice.value));
    }
}

QString ChoiceBox::stored() const
{
    const int listed = isEditable() ? findText(currentText()) : currentIndex();
    if (listed >= 0) {
        return itemData(listed).toString();
    }
    return isEditable() ? currentText().trimmed() : set_;
}

void ChoiceBox::setStored(const QString& text)
{
    set_ = text;
    setCurrentIndex(findData(text));
    if (isEditable() && currentIndex() < 0) {
        setEditText(text);
    }
}

} // namespace hostkit
