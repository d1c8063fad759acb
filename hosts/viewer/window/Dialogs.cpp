#include "hosts/viewer/window/Dialogs.h"

#include "contracts/ogl/OruOglViewport.h"
#include "hosts/host/PictureOptions.h"
#include "hosts/host/PictureWriter.h"
#include "hosts/viewer/window/Appearance.h"
#include "hosts/viewer/window/Document.h"
#include "hosts/viewer/window/HelpDialog.h"
#include "hosts/viewer/window/PictureDialog.h"
#include "hosts/viewer/window/Selection.h"
#include "hosts/widgets/SceneWidget.h"

#include <QApplication>
#include <QClipboard>
#include <QColorDialog>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QInputDialog>
#include <QMessageBox>

using hostkit::HostScene;

Dialogs::Dialogs(hostkit::SceneWidget& view, Document& document, Appearance& appearance, Selection& selection,
                 QWidget& window)
    : QObject(&window)
    , view_(view)
    , document_(document)
    , appearance_(appearance)
    , selection_(selection)
    , window_(window)
{}

/// A name beside the model that is shown, with another suffix.
QString Dialogs::suggested(const QString& suffix) const
{
    const QString first = document_.files().value(0);
    const QFileInfo info(first.isEmpty() ? QDir::current().filePath(QStringLiteral("view")) : first);
    return info.dir().filePath(info.completeBaseName() + suffix);
}

void Dialogs::open()
{
    const QString folder = QFileInfo(document_.files().value(0)).path();
    document_.openAny(QFileDialog::getOpenFileNames(&window_, tr("Open"), folder));
}

void Dialogs::saveState()
{
    const QString file =
        QFileDialog::getSaveFileName(&window_, tr("Save State"), suggested(QStringLiteral(".state.json")));
    if (file.isEmpty()) {
        return;
    }
    QString error;
    const bool saved = view_.window().hasScene() && view_.host().save(file, &error);
    Q_EMIT saved ? done(tr("Saved %1").arg(file)) : failed(error);
}

QSize Dialogs::viewSize() const
{
    const OruOglViewport& viewport = view_.host().context().viewport;
    return {viewport.width, viewport.height};
}

/// Null, and told: it could not be made.
QImage Dialogs::picture(const QSize& size, const hostkit::PictureOptions& options)
{
    QImage image;
    const bool ran = view_.window().runAndTell([&](HostScene& host) {
        image = host.picture(size, options);
        return true;
    });
    if (!ran || image.isNull()) {
        Q_EMIT failed(tr("The picture could not be drawn."));
    }
    return image;
}

void Dialogs::savePicture()
{
    if (!view_.window().hasScene()) {
        return;
    }
    QString free = suggested(QStringLiteral(".png"));
    for (int number = 2; QFileInfo::exists(free); ++number) {
        free = suggested(QStringLiteral("-%1.png").arg(number));
    }
    PictureDialog dialog(viewSize(), free, &window_);
    if (dialog.exec() != QDialog::Accepted) {
        return;
    }
    const QImage image = picture(dialog.size(), dialog.options());
    if (!image.isNull()) {
        write(image, dialog.file(), dialog.options());
    }
}

void Dialogs::write(const QImage& picture, const QString& file, const hostkit::PictureOptions& options)
{
    hostkit::PictureWriter writer(file);
    writer.setText(QStringLiteral("Title"), window_.windowTitle());
    writer.setDotsPerInch(hostkit::PictureWriter::usualDotsPerInch * options.overlayScale);
    QString error;
    const bool written = writer.write(picture, &error);
    Q_EMIT written ? done(tr("Saved %1").arg(file)) : failed(error);
}

void Dialogs::copyPicture()
{
    if (!view_.window().hasScene()) {
        return;
    }
    hostkit::PictureOptions options;
    options.samples = PictureDialog::usualSamples;
    const QImage image = picture(viewSize(), options);
    if (!image.isNull()) {
        QApplication::clipboard()->setImage(image);
        Q_EMIT done(tr("The picture is on the clipboard"));
    }
}

void Dialogs::chooseBackground()
{
    const QColor color = QColorDialog::getColor(appearance_.background(), &window_, tr("Background"));
    if (color.isValid()) {
        appearance_.setBackground(color);
    }
}

void Dialogs::chooseColor()
{
    const QColor color = QColorDialog::getColor(selection_.color(), &window_, tr("Color of the Selection"));
    if (color.isValid()) {
        selection_.setColor(color);
    }
}

void Dialogs::chooseOpacity()
{
    constexpr double wholePercent = 100.0;
    bool good = false;
    const double percent = QInputDialog::getDouble(&window_, tr("Opacity of the Selection"), tr("Percent"),
                                                   static_cast<double>(selection_.opacity()) * wholePercent,
                                                   0.0, wholePercent, 0, &good);
    if (good) {
        selection_.setOpacity(static_cast<float>(percent / wholePercent));
    }
}

void Dialogs::help()
{
    HelpDialog(&window_).exec();
}

void Dialogs::about()
{
    QMessageBox::about(&window_, tr("About Kelvar View"),
                       tr("Kelvar View %1\n\nShows models, finds, cuts and measures their parts.")
                           .arg(QStringLiteral(KELVAR_VERSION)));
}

void Dialogs::quit()
{
    window_.close();
}
