#pragma once

#include <QDialog>
#include <QString>

/// Tells all keys and gestures, from the tables that do the work.
class HelpDialog : public QDialog
{
    Q_OBJECT

public:
    explicit HelpDialog(QWidget* parent = nullptr);

    /// The same as HTML.
    static QString text();
};
