#include "hosts/viewer/window/PictureDialog.h"

#include "hosts/host/GlPlatform.h"
#include "hosts/host/PictureWriter.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QDoubleSpinBox>
#include <QFileDialog>
#include <QFileInfo>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

using hostkit::PictureOptions;

namespace {

constexpr double scaleStep = 0.5;

QSpinBox* pixelBox(int value)
{
    auto* const box = new QSpinBox;
    box->setRange(1, hostkit::GlPlatform::largestPicture());
    box->setValue(value);
    box->setSuffix(QStringLiteral(" px"));
    return box;
}

QHBoxLayout* beside(QWidget* left, QWidget* right)
{
    auto* const row = new QHBoxLayout;
    row->addWidget(left, 1);
    row->addWidget(right);
    return row;
}

} // namespace

PictureDialog::PictureDialog(const QSize& size, const QString& file, QWidget* parent)
    : QDialog(parent)
    , file_(new QLineEdit(file))
    , width_(pixelBox(size.width()))
    , height_(pixelBox(size.height()))
    , samples_(new QSpinBox)
    , scale_(new QDoubleSpinBox)
    , transparent_(new QCheckBox(tr("&Transparent background")))
    , reason_(new QLabel)
    , save_(nullptr)
{
    setWindowTitle(tr("Save Picture"));
    samples_->setRange(1, PictureOptions::mostSamples);
    samples_->setValue(usualSamples);
    scale_->setRange(PictureOptions::smallestOverlayScale, PictureOptions::largestOverlayScale);
    scale_->setSingleStep(scaleStep);
    scale_->setValue(1.0);
    reason_->setWordWrap(true);
    auto* const choose = new QPushButton(tr("&Browse..."));
    connect(choose, &QPushButton::clicked, this, [this] { browse(); });
    auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Save | QDialogButtonBox::Cancel);
    save_ = buttons->button(QDialogButtonBox::Save);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto* const form = new QFormLayout(this);
    auto* const fileLabel = new QLabel(tr("&File"));
    fileLabel->setBuddy(file_);
    form->addRow(fileLabel, beside(file_, choose));
    form->addRow(tr("&Width"), width_);
    form->addRow(tr("&Height"), height_);
    form->addRow(tr("&Samples of a pixel"), samples_);
    form->addRow(tr("&Overlay scale"), scale_);
    form->addRow(QString(), transparent_);
    form->addRow(reason_);
    form->addRow(buttons);
    connect(file_, &QLineEdit::textChanged, this, [this] { check(); });
    connect(transparent_, &QCheckBox::toggled, this, [this] { check(); });
    for (QSpinBox* const side : {width_, height_}) {
        connect(side, QOverload<int>::of(&QSpinBox::valueChanged), this, [this] { check(); });
    }
    check();
}

QString PictureDialog::file() const
{
    return file_->text().trimmed();
}

QSize PictureDialog::size() const
{
    return {width_->value(), height_->value()};
}

PictureOptions PictureDialog::options() const
{
    PictureOptions options;
    options.samples = samples_->value();
    options.overlayScale = scale_->value();
    options.transparent = transparent_->isChecked();
    return options;
}

bool PictureDialog::isRefused() const
{
    return !save_->isEnabled();
}

void PictureDialog::browse()
{
    const QString filter =
        tr("Pictures (%1)")
            .arg(QStringLiteral("*.") + hostkit::PictureWriter::suffixes().join(QStringLiteral(" *.")));
    const QString chosen = QFileDialog::getSaveFileName(this, windowTitle(), file(), filter);
    if (!chosen.isEmpty()) {
        file_->setText(chosen);
    }
}

/// Refuses ahead of all work what cannot be written.
void PictureDialog::check()
{
    QString reason;
    const bool good = !file().isEmpty() &&
                      hostkit::PictureWriter(file()).accepts(size(), transparent_->isChecked(), &reason);
    if (good && QFileInfo::exists(file())) {
        reason = tr("This file is there already and will be replaced.");
    }
    reason_->setText(reason);
    reason_->setVisible(!reason.isEmpty());
    save_->setEnabled(good);
}
