#include "hosts/host/PictureWriter.h"

#include "contracts/core/OruFileWriter.h"

#include <QBuffer>
#include <QFileInfo>
#include <QImageWriter>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>

namespace hostkit {

namespace {

/// A suffix and what Qt makes of it. A quality or compression of -1 is Qt's own choice.
struct PictureFormat
{
    const char* suffix;
    const char* format;
    bool hasAlpha;
    int largestSide;
    int quality;
    int compression;
};

constexpr int anySide = std::numeric_limits<int>::max();
constexpr int lzw = 1;

constexpr PictureFormat formats[] = {
    {"png", "png", true, anySide, -1, -1},   {"jpg", "jpeg", false, 65500, 92, -1},
    {"jpeg", "jpeg", false, 65500, 92, -1},  {"webp", "webp", true, 16383, 92, -1},
    {"tif", "tiff", true, anySide, -1, lzw}, {"tiff", "tiff", true, anySide, -1, lzw},
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

/// The suffixes that can be written here, or those of them with an alpha channel, for a sentence.
QString listed(bool withAlpha)
{
    QStringList found = PictureWriter::suffixes();
    for (const PictureFormat& row : formats) {
        if (withAlpha && !row.hasAlpha) {
            found.removeAll(QLatin1String(row.suffix));
        }
    }
    return found.join(QStringLiteral(", "));
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

bool PictureWriter::accepts(const QSize& pixels, bool transparent, QString* error) const
{
    const PictureFormat* const format = formatOf(file_);
    QString reason;
    if (!format) {
        reason = QStringLiteral("a picture is written as %1").arg(listed(false));
    } else if (transparent && !format->hasAlpha) {
        reason = QStringLiteral("nothing is transparent in a %1 file; it is in %2")
                     .arg(QLatin1String(format->suffix), listed(true));
    } else if (std::max(pixels.width(), pixels.height()) > format->largestSide) {
        reason = QStringLiteral("a %1 file can be %2 pixels wide and high at most")
                     .arg(QLatin1String(format->suffix))
                     .arg(format->largestSide);
    } else {
        return true;
    }
    *error = file_ + QStringLiteral(": ") + reason;
    return false;
}

bool PictureWriter::write(QImage picture, QString* error) const
{
    if (!accepts(picture.size(), false, error)) {
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
        *error = file_ + QStringLiteral(": ") + writer.errorString();
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
