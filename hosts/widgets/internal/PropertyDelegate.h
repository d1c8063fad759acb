#pragma once

#include <QStyledItemDelegate>

namespace hostkit {

/// Gives the values of a PropertyModel the editors that fit their kinds.
///
/// A text that its kind refuses stays in its editor at Enter, for the person to mend, and why() tells what is
/// wrong with it.
class PropertyDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                          const QModelIndex& index) const override;
    void setEditorData(QWidget* editor, const QModelIndex& index) const override;
    void setModelData(QWidget* editor, QAbstractItemModel* model, const QModelIndex& index) const override;

    bool eventFilter(QObject* watched, QEvent* event) override;

protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override;

Q_SIGNALS:
    /// What is wrong with a text that is being typed; empty: nothing.
    void why(const QString& reason) const;

private:
    void finish(QWidget* editor) const;
};

} // namespace hostkit
