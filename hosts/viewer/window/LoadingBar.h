#pragma once

#include <QWidget>

class QLabel;
class QProgressBar;

/// Tells in a status bar how far loading is, with a button that stops it; hidden while nothing is loaded.
class LoadingBar : public QWidget
{
    Q_OBJECT

public:
    explicit LoadingBar(QWidget* parent = nullptr);

    /// `share` is 0 to 1.
    void tell(const QString& what, double share);

Q_SIGNALS:
    void stopped();

private:
    QLabel* what_;
    QProgressBar* bar_;
};
