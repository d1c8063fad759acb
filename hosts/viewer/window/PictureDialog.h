#pragma once

#include "hosts/host/PictureOptions.h"

#include <QDialog>
#include <QSize>
#include <QString>

class QCheckBox;
class QDoubleSpinBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QSpinBox;

/// Asks for a picture of a view: file, size, samples, overlay scale and background.
class PictureDialog : public QDialog
{
    Q_OBJECT

public:
    /// Samples that smooth the edges of a picture.
    static constexpr int usualSamples = 8;

    /// `size` in pixels and `file` are what it starts with.
    PictureDialog(const QSize& size, const QString& file, QWidget* parent = nullptr);

    QString file() const;
    QSize size() const;
    hostkit::PictureOptions options() const;

    /// There can be no such picture; the dialog tells why.
    bool isRefused() const;

private:
    void browse();
    void check();

    QLineEdit* file_;
    QSpinBox* width_;
    QSpinBox* height_;
    QSpinBox* samples_;
    QDoubleSpinBox* scale_;
    QCheckBox* transparent_;
    /// Why there can be no such picture, or what it replaces.
    QLabel* reason_;
    QPushButton* save_;
};
