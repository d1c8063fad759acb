#include "hosts/widgets/internal/PropertyDelegate.h"

#include "contracts/core/OruPropertyKind.h"
#include "hosts/widgets/PropertyModel.h"
#include "hosts/widgets/internal/ChoiceBox.h"
#include "hosts/widgets/internal/ColorButton.h"
#include "hosts/widgets/internal/NumberBox.h"

#include <QIcon>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMetaProperty>
#include <QPixmap>
#include <QTimer>

namespace hostkit {

namespace {

using Type = OruPropertyKind::Type;

/// What an editor carries: what it edits, and that it has been filled.
constexpr const char* keyProperty = "propertyKey";
constexpr const char* kindProperty = "propertyKind";
constexpr const char* filledProperty = "propertyFilled";

QString textOf(const QWidget& editor)
{
    return editor.metaObject()->userProperty().read(&editor).toString();
}

/// What keeps the content of an editor from being stored; empty: nothing.
QString refusalOf(const QWidget& editor)
{
    const auto* const kind = editor.property(kindProperty).value<const OruPropertyKind*>();
    QString reason;
    return kind->accepts(textOf(editor), &reason)
               ? QString()
               : PropertyModel::refusal(editor.property(keyProperty).toString(), reason);
}

QWidget* makeEditor(const OruPropertyKind& kind, QWidget* parent)
{
    if (!kind.choices().empty()) {
        return new ChoiceBox(kind, parent);
    }
    if (kind.type() == Type::WholeNumber || kind.type() == Type::Number) {
        return new NumberBox(kind, parent);
    }
    if (kind.type() == Type::Color) {
        return new ColorButton(parent);
    }
    auto* const line = new QLineEdit(parent);
    line->setFrame(false);
    return line;
}

/// Runs out once the editor is in its place.
QTimer* timerFor(QWidget* editor)
{
    auto* const timer = new QTimer(editor);
    timer->setSingleShot(true);
    timer->start(0);
    return timer;
}

} // namespace

QWidget* PropertyDelegate::createEditor(QWidget* parent, const QStyleOptionViewItem&,
                                        const QModelIndex& index) const
{
    const auto* const kind = index.data(PropertyModel::KindRole).value<const OruPropertyKind*>();
    if (!kind) {
        return nullptr;
    }
    QWidget* const editor = makeEditor(*kind, parent);
    editor->setProperty(keyProperty, index.data(PropertyModel::KeyRole));
    editor->setProperty(kindProperty, QVariant::fromValue(kind));
    auto* const line =
        qobject_cast<QLineEdit*>(editor) ? static_cast<QLineEdit*>(editor) : editor->findChild<QLineEdit*>();
    if (line) {
        connect(line, &QLineEdit::textEdited, this, [this, editor] { Q_EMIT why(refusalOf(*editor)); });
    }
    if (auto* const color = qobject_cast<ColorButton*>(editor)) {
        connect(color, &ColorButton::chosen, this, [this, editor] { finish(editor); });
        connect(timerFor(color), &QTimer::timeout, color, &ColorButton::choose);
    } else if (auto* const choice = qobject_cast<ChoiceBox*>(editor)) {
        connect(choice, QOverload<int>::of(&QComboBox::activated), this, [this, editor] { finish(editor); });
        if (!choice->isEditable()) {
            connect(timerFor(choice), &QTimer::timeout, choice, &QComboBox::showPopup);
        }
    }
    return editor;
}

void PropertyDelegate::finish(QWidget* editor) const
{
    auto* const self = const_cast<PropertyDelegate*>(this); // the signals of the base class are not const
    Q_EMIT self->commitData(editor);
    Q_EMIT self->closeEditor(editor);
}

/// A value that changes meanwhile does not overwrite what the person types.
void PropertyDelegate::setEditorData(QWidget* editor, const QModelIndex& index) const
{
    if (!editor->property(filledProperty).toBool()) {
        editor->setProperty(filledProperty, true);
        QStyledItemDelegate::setEditorData(editor, index);
    }
}

/// An editor that was looked at and left changes nothing.
void PropertyDelegate::setModelData(QWidget* editor, QAbstractItemModel* model,
                                    const QModelIndex& index) const
{
    const QString text = textOf(*editor);
    if (text != index.data(Qt::EditRole).toString()) {
        Q_EMIT why(QString());
        model->setData(index, text);
    }
}

/// A color looks the same in a row that is selected, which is else drawn with a tint.
void PropertyDelegate::initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const
{
    QStyledItemDelegate::initStyleOption(option, index);
    const QVariant color = index.data(Qt::DecorationRole);
    if (color.isValid()) {
        QPixmap patch(option->decorationSize);
        patch.fill(color.value<QColor>());
        option->icon.addPixmap(patch, QIcon::Normal);
        option->icon.addPixmap(patch, QIcon::Selected);
    }
}

bool PropertyDelegate::eventFilter(QObject* watched, QEvent* event)
{
    auto* const editor = qobject_cast<QWidget*>(watched);
    if (editor && event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        const bool leaves =
            key == Qt::Key_Return || key == Qt::Key_Enter || key == Qt::Key_Tab || key == Qt::Key_Backtab;
        const QString reason = leaves ? refusalOf(*editor) : QString();
        if (!reason.isEmpty()) {
            Q_EMIT why(reason);
            return true;
        }
    }
    return QStyledItemDelegate::eventFilter(watched, event);
}

} // namespace hostkit
