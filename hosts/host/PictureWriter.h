#pragma once

#include "hosts/host/kelvar_host_api.h"

#include <QImage>
#include <QMap>
#include <QSize>
#include <QString>
#include <QStringList>

namespace hostkit {

/// Writes a picture into a file in the format that the suffix of its name tells: PNG, JPEG, WebP or TIFF, as
/// far as Qt has the plugins here.
///
///     PictureWriter writer(file);
///     writer.setText("Title", "Engine");
///     if (!writer.write(host.picture(size), &error)) { complain(error); }
///
/// A name without a suffix, such as /dev/stdout, means PNG. A file is written whole or stays as it was.
class KELVAR_HOST_API PictureWriter
{
public:
    /// Pixels of a picture on an inch of paper or screen, unless another number is set.
    static constexpr double usualDotsPerInch = 96.0;

    /// Touches nothing yet.
    explicit PictureWriter(const QString& file);

    /// The suffixes that can be written here, in lower case; needs an application object.
    static QStringList suffixes();

    /// Whether write() will find a format for a picture of that size, one with an alpha channel if it is to
    /// be transparent; for asking ahead of all work. False: `error` says what there is instead.
    bool accepts(const QSize& pixels, bool transparent, QString* error) const;

    /// Something to be told in the file under a key such as "Title". PNG and JPEG carry it, the others drop
    /// it.
    void setText(const QString& key, const QString& text) { texts_.insert(key, text); }

    /// The resolution to be told in the file, above 0. PNG, JPEG and TIFF carry it.
    void setDotsPerInch(double dots) { dotsPerInch_ = dots; }

    /// Writes the picture; its alpha channel is lost where the format has none. False: the file is as it was,
    /// and `error` says "FILE: reason".
    bool write(QImage picture, QString* error) const;

private:
    QString file_;
    QMap<QString, QString> texts_;
    double dotsPerInch_ = usualDotsPerInch;
};

} // namespace hostkit
