#pragma once

#include <QFrame>

class QLabel;

/// A line over the view that tells what went wrong, or what a file lacked, until a person closes it.
class MessageBar : public QFrame
{
    Q_OBJECT

public:
    /// Hidden until there is something to tell.
    explicit MessageBar(QWidget* parent = nullptr);

    void tellError(const QString& text) { tell(text, true); }
    void tellNote(const QString& text) { tell(text, false); }

    /// What it tells; empty: nothing.
    QString text() const;

private:
    void tell(const QString& text, bool error);

    QLabel* icon_;
    QLabel* label_;
};
