#include "hosts/host/PictureWriter.h"

#include "contracts/core/OruFileWriter.h"

#include <QBuffer>
#include <QFileInfo>
#include <QImageWriter>

#include <algorithm>
#include <cmath>
#include <iterator>

namespace hostkit {

namespace {

/// A suffix and what Qt makes of it. A quality or compression of -1 is Qt's own choice.
struct PictureFormat
{
    const char* suffix;
    const char* format;
    bool hasAlpha;
    int quality;
    int compression;
};

constexpr int lzw = 1;

constexpr PictureFormat formats[] = {
    {"png", "png", true, -1, -1},   {"jpg", "jpeg", false, 92, -1}, {"jpeg", "jpeg", false, 92, -1},
    {"webp", "webp", true, 92, -1}, {"tif", "tiff", true, -1, lzw}, {"tiff", "tiff", true, -1, lzw},
};

/// The row of the file's suffix, or null if there is none that can be written here.
const PictureFormat* formatOf(const QString& file)
{
    const QString named = QFileInfo(file).suffix().toLower();
    const QString suffix = named.isEmpty() ? QStringLiteral("png") : named;
    const auto found = std::find_if(std::begin(formats), std::end(formats), [&](const PictureFormat& row) {
        return suffix == QLatin1String(row.suffix);
    });
    return found != std::end(formats) && PictureWriter::suffixes().contains(suffix) ? &*found : nullptr;
}

QString listed(const QStringList& suffixes)
{
    return suffixes.join(QStringLiteral(", "));
}

} // namespace

PictureWriter::PictureWriter(const QString& file)
    : file_(file)
{}

QStringList PictureWriter::suffixes()
{
    const QList<QByteArray> known = QImageWriter::supportedImageFormats();
    QStringList found;
    for (const PictureFormat& row : formats) {
        if (known.contains(row.format)) {
            found.append(QLatin1String(row.suffix));
        }
    }
    return found;
}

bool PictureWriter::accepts(bool transparent, QString* error) const
{
    const PictureFormat* const format = formatOf(file_);
    if (!format) {
        *error = QStringLiteral("%1: a picture is written as %2").arg(file_, listed(suffixes()));
        return false;
    }
    if (transparent && !format->hasAlpha) {
        QStringList others = suffixes();
        for (const PictureFormat& row : formats) {
            if (!row.hasAlpha) {
                others.removeAll(QLatin1String(row.suffix));
            }
        }
        *error = QStringLiteral("%1: nothing is transparent in a %2 file; it is in %3")
                     .arg(file_, QLatin1String(format->suffix), listed(others));
        return false;
    }
    return true;
}

bool PictureWriter::write(QImage picture, QString* error) const
{
    if (!accepts(false, error)) {
        return false;
    }
    const PictureFormat* const format = formatOf(file_);
    constexpr double inchesPerMeter = 1.0 / 0.0254;
    const int dotsPerMeter = static_cast<int>(std::lround(dotsPerInch_ * inchesPerMeter));
    picture.setDotsPerMeterX(dotsPerMeter);
    picture.setDotsPerMeterY(dotsPerMeter);
    QBuffer content;
    content.open(QIODevice::WriteOnly);
    QImageWriter writer(&content, format->format);
    writer.setQuality(format->quality);
    if (format->compression >= 0) {
        writer.setCompression(format->compression);
    }
    for (auto text = texts_.begin(); text != texts_.end(); ++text) {
        writer.setText(text.key(), text.value());
    }
    if (!writer.write(picture)) {
        *error = QStringLiteral("%1: %2").arg(file_, writer.errorString());
        return false;
    }
    OruFileWriter file(file_);
    if (!file.replace(content.data())) {
        *error = file.error();
        return false;
    }
    return true;
}

} // namespace hostkit
