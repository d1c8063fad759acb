#include "hosts/import/reader/TextureReader.h"

#include "contracts/core/OruFileReader.h"
#include "hosts/import/internal/ReaderProtocol.h"
#include "hosts/import/reader/ProcessorTime.h"

#include <QBuffer>
#include <QByteArray>
#include <QFileInfo>
#include <QImageReader>
#include <QUrl>

#include <assimp/scene.h>
#include <assimp/texture.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <limits>

namespace hostkit {

namespace {

constexpr qint64 mostFileBytes = qint64(256) << 20;

/// Where the programs that make models put their pictures, beside the model or beside its folder.
constexpr std::array<const char*, 8> usualFolders = {"textures", "texture",   "tex",   "images",
                                                     "maps",     "materials", "skins", "sourceimages"};

/// Of more exotic ones the readers are less well tried.
constexpr std::array<const char*, 8> knownFormats = {"png", "jpg", "jpeg", "bmp",
                                                     "tga", "gif", "webp", "tiff"};

/// The name of a picture as a path of this system: some formats have URLs, many have backslashes.
QString pathOf(const std::string& name)
{
    QString path = QString::fromStdString(name).trimmed();
    if (path.startsWith(QLatin1String("file:"), Qt::CaseInsensitive)) {
        path = QUrl(path).toLocalFile();
    }
    return path.replace(QLatin1Char('\\'), QLatin1Char('/'));
}

bool isFile(const QString& path)
{
    return QFileInfo(path).isFile();
}

} // namespace

TextureReader::TextureReader(const aiScene& scene, const QString& modelFile, std::uint64_t mostBytes,
                             Notes& notes)
    : scene_(scene)
    , home_(QFileInfo(modelFile).absoluteDir())
    , bytesLeft_(mostBytes > 0 ? mostBytes : std::numeric_limits<std::uint64_t>::max())
    , notes_(notes)
{}

std::shared_ptr<const Texture> TextureReader::read(const std::string& name, Texture::Wrap wrapS,
                                                   Texture::Wrap wrapT)
{
    const auto [at, fresh] = textures_.emplace(Key{name, wrapS, wrapT}, nullptr);
    if (fresh) {
        const QImage picture = image(name);
        if (!picture.isNull()) {
            at->second = std::make_shared<const Texture>(
                Texture{QFileInfo(pathOf(name)).fileName(), picture, wrapS, wrapT});
        }
    }
    return at->second;
}

QImage TextureReader::image(const std::string& name)
{
    const auto [at, fresh] = images_.emplace(name, QImage());
    if (!fresh) {
        return at->second;
    }
    QString reason;
    QImage picture;
    if (const aiTexture* const inside = scene_.GetEmbeddedTexture(name.c_str())) {
        picture = embedded(*inside, reason);
    } else {
        const QString file = find(pathOf(name));
        QByteArray content;
        if (file.isEmpty()) {
            reason = QStringLiteral("there is no such file");
        } else if (!OruFileReader::read(file, mostFileBytes, content, reason)) {
            reason = reason.isEmpty() ? QStringLiteral("the file is too large") : reason;
        } else {
            ProcessorTime::allowFor(file, content.size());
            picture = decoded(content, QFileInfo(file).suffix().toLower().toLatin1(), reason);
        }
    }
    if (!picture.isNull() && !takes(picture)) {
        picture = QImage();
        reason = QStringLiteral("all pictures together take too much memory");
    }
    if (picture.isNull()) {
        notes_.add(
            QStringLiteral("texture \"%1\" is left out: %2").arg(QString::fromStdString(name), reason));
    }
    return at->second = picture;
}

/// assimp keeps a picture either as its file, with a height of 0, or as pixels.
QImage TextureReader::embedded(const aiTexture& texture, QString& reason) const
{
    const auto width = static_cast<int>(texture.mWidth);
    const auto height = static_cast<int>(texture.mHeight);
    if (height == 0) {
        return decoded(QByteArray::fromRawData(reinterpret_cast<const char*>(texture.pcData), width),
                       texture.achFormatHint, reason);
    }
    constexpr int largest = ReaderProtocol::largestSide;
    if (width < 1 || height < 1 || width > largest || height > largest) {
        reason = QStringLiteral("it is larger than %1 pixels on a side").arg(largest);
        return {};
    }
    QImage picture(width, height, QImage::Format_ARGB32);
    const aiTexel* from = texture.pcData;
    for (int row = 0; row < picture.height(); ++row) {
        auto* const to = reinterpret_cast<QRgb*>(picture.scanLine(row));
        std::transform(from, from + width, to,
                       [](const aiTexel& texel) { return qRgba(texel.r, texel.g, texel.b, texel.a); });
        from += width;
    }
    return picture;
}

/// Null, and a reason, for what is no picture of a known format or too large.
QImage TextureReader::decoded(const QByteArray& content, const QByteArray& suffix, QString& reason) const
{
    QBuffer buffer;
    buffer.setData(content);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer, suffix);
    const QByteArray format = reader.canRead() ? reader.format() : QByteArray();
    if (std::find(knownFormats.begin(), knownFormats.end(), format) == knownFormats.end()) {
        reason = QStringLiteral("it is no picture of a format that is read here, such as PNG or JPEG");
        return {};
    }
    const QSize size = reader.size();
    constexpr int largest = ReaderProtocol::largestSide;
    if (size.width() > largest || size.height() > largest) {
        reason = QStringLiteral("it is larger than %1 pixels on a side").arg(largest);
        return {};
    }
    QImage picture = reader.read();
    if (picture.isNull()) {
        reason = QStringLiteral("damaged: ") + reader.errorString();
    }
    return picture;
}

bool TextureReader::takes(const QImage& image)
{
    const std::uint64_t bytes = std::uint64_t(4) * static_cast<std::uint64_t>(image.width()) *
                                static_cast<std::uint64_t>(image.height());
    if (bytes > bytesLeft_) {
        return false;
    }
    bytesLeft_ -= bytes;
    return true;
}

/// The file that a name in the model means; empty: there is none.
QString TextureReader::find(const QString& name)
{
    // In a URL a blank is "%20"; in a file name that may be what it says.
    for (const QString& path : {name, QUrl::fromPercentEncoding(name.toUtf8())}) {
        const QString file = home_.filePath(path);
        if (isFile(file)) {
            return file;
        }
        const QString near = findBaseName(path.mid(path.lastIndexOf(QLatin1Char('/')) + 1));
        if (!near.isEmpty()) {
            return near;
        }
    }
    return {};
}

QString TextureReader::findBaseName(const QString& base)
{
    if (base.isEmpty()) {
        return {};
    }
    for (const QDir& folder : folders()) {
        if (isFile(folder.filePath(base))) {
            return folder.filePath(base);
        }
    }
    for (const QDir& folder : folders()) {
        for (const QString& entry : folder.entryList(QDir::Files)) {
            if (entry.compare(base, Qt::CaseInsensitive) == 0) {
                return folder.filePath(entry);
            }
        }
    }
    return {};
}

/// The model's own, and the usual ones.
const std::vector<QDir>& TextureReader::folders()
{
    if (folders_) {
        return *folders_;
    }
    folders_.emplace({home_});
    for (const QString& place : {home_.path(), home_.filePath(QStringLiteral(".."))}) {
        const QDir dir(place);
        for (const QString& entry : dir.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
            const bool usual = std::any_of(usualFolders.begin(), usualFolders.end(), [&](const char* known) {
                return entry.compare(QLatin1String(known), Qt::CaseInsensitive) == 0;
            });
            if (usual) {
                folders_->emplace_back(dir.filePath(entry));
            }
        }
    }
    return *folders_;
}

TextureReader::Alpha TextureReader::alphaOf(const QImage& image)
{
    if (!image.hasAlphaChannel()) {
        return Alpha::None;
    }
    const QImage pixels = image.convertToFormat(QImage::Format_ARGB32);
    Alpha found = Alpha::None;
    for (int row = 0; row < pixels.height(); ++row) {
        const auto* const line = reinterpret_cast<const QRgb*>(pixels.constScanLine(row));
        for (int column = 0; column < pixels.width(); ++column) {
            const int alpha = qAlpha(line[column]);
            if (alpha > 0 && alpha < 255) {
                return Alpha::Degrees;
            }
            if (alpha == 0) {
                found = Alpha::AllOrNothing;
            }
        }
    }
    return found;
}

} // namespace hostkit
