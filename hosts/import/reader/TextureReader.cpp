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
#include <memory>

#include <stb_image.h>

namespace hostkit {

namespace {

constexpr qint64 mostFileBytes = qint64(256) << 20;

/// Where the programs that make models put their pictures, beside the model or beside its folder.
constexpr std::array<const char*, 8> usualFolders = {"textures", "texture",   "tex",   "images",
                                                     "maps",     "materials", "skins", "sourceimages"};

/// Of more exotic ones the readers are less well tried.
constexpr std::array<const char*, 7> knownFormats = {"png", "jpg", "jpeg", "bmp", "gif", "webp", "tiff"};

/// assimp's own stand-in for a texture that a file has without a name.
constexpr const char* dummyName = "$texture_dummy";

const QString tooMuchMemory = QStringLiteral("all pictures together take too much memory");

/// The name of a picture as a path of this system: some formats have URLs, many have backslashes, and to
/// Blender "//" is the folder of the model.
QString pathOf(const std::string& name)
{
    QString path = QString::fromStdString(name).trimmed();
    if (path.startsWith(QLatin1String("file:"), Qt::CaseInsensitive)) {
        path = QUrl(path).toLocalFile();
    }
    path.replace(QLatin1Char('\\'), QLatin1Char('/'));
    return path.startsWith(QLatin1String("//")) ? path.mid(2) : path;
}

/// The entry of a folder that is called so, at the last without regard to upper and lower case; empty: none.
QString entryOf(const QDir& folder, const QString& name)
{
    if (folder.exists(name)) {
        return folder.filePath(name);
    }
    for (const QString& entry : folder.entryList(QDir::AllEntries | QDir::Hidden)) {
        if (entry.compare(name, Qt::CaseInsensitive) == 0) {
            return folder.filePath(entry);
        }
    }
    return {};
}

/// A regular file by its path from a folder, step by step; empty: there is none.
QString fileBelow(const QDir& folder, const QString& path)
{
    QString place = path.startsWith(QLatin1Char('/')) ? QStringLiteral("/") : folder.path();
    for (const QString& step : path.split(QLatin1Char('/'))) {
        place = step.isEmpty() ? place : entryOf(QDir(place), step);
        if (place.isEmpty()) {
            return {};
        }
    }
    return QFileInfo(place).isFile() ? place : QString();
}

/// TGA, of which Qt reads some kinds only, and those by a plugin that may not be there.
QImage decodedTga(const QByteArray& content)
{
    const auto* const bytes = reinterpret_cast<const stbi_uc*>(content.constData());
    const auto size = static_cast<int>(content.size());
    int width = 0;
    int height = 0;
    int channels = 0;
    constexpr int largest = ReaderProtocol::largestSide;
    if (stbi_info_from_memory(bytes, size, &width, &height, &channels) == 0 || width > largest ||
        height > largest) {
        return {};
    }
    const std::unique_ptr<stbi_uc, decltype(&stbi_image_free)> pixels(
        stbi_load_from_memory(bytes, size, &width, &height, &channels, 4), &stbi_image_free);
    return pixels ? QImage(pixels.get(), width, height, 4 * width, QImage::Format_RGBA8888).copy() : QImage();
}

QImage stretched(const QImage& picture, const QSize& size)
{
    return picture.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

/// Of a picture in ARGB32, by bytes of a mask of its size. Qt's own way loses the color of what is not seen,
/// which shows where it borders on what is.
void setAlpha(QImage& picture, const QImage& mask)
{
    for (int row = 0; row < picture.height(); ++row) {
        auto* const to = reinterpret_cast<QRgb*>(picture.scanLine(row));
        std::transform(to, to + picture.width(), mask.constScanLine(row), to,
                       [](QRgb color, uchar alpha) { return (color & 0xffffffu) | QRgb(alpha) << 24; });
    }
}

} // namespace

TextureReader::TextureReader(const aiScene& scene, const QString& modelFile, std::uint64_t mostBytes,
                             Notes& notes)
    : scene_(scene)
    , home_(QFileInfo(modelFile).absoluteDir())
    , bytesLeft_(mostBytes > 0 ? mostBytes : std::numeric_limits<std::uint64_t>::max())
    , notes_(notes)
{
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
    QImageReader::setAllocationLimit(0); // largestSide and the limit of this process are those that count
#endif
}

std::shared_ptr<const Texture> TextureReader::read(const std::string& color, const std::string& opacity,
                                                   Texture::Wrap wrapS, Texture::Wrap wrapT)
{
    const auto [at, fresh] = textures_.emplace(Key{color, opacity, wrapS, wrapT}, nullptr);
    if (fresh) {
        // Some programs name the same picture twice; its alpha is what they mean.
        const QImage picture = opacity == color ? image(color) : joined(color, opacity);
        if (!picture.isNull()) {
            const QString file = pathOf(color.empty() ? opacity : color);
            at->second =
                std::make_shared<const Texture>(Texture{QFileInfo(file).fileName(), picture, wrapS, wrapT});
        }
    }
    return at->second;
}

/// As large as the larger one of both. Null for two that cannot be used.
QImage TextureReader::joined(const std::string& color, const std::string& opacity)
{
    QImage below = image(color);
    const QImage mask = image(opacity);
    if (mask.isNull()) {
        return below;
    }
    const QSize size = mask.size().expandedTo(below.size());
    QImage picture(size, QImage::Format_ARGB32);
    if (!takes(picture)) {
        leaveOut(opacity, tooMuchMemory);
        return below;
    }
    picture.fill(Qt::white);
    if (!below.isNull()) {
        const QImage solid = below.convertToFormat(QImage::Format_RGB32);
        picture = stretched(solid, size).convertToFormat(QImage::Format_ARGB32);
    }
    const bool bright = alphaOf(mask) == Alpha::None;
    const QImage fitting = stretched(mask, size);
    setAlpha(picture, fitting.convertToFormat(bright ? QImage::Format_Grayscale8 : QImage::Format_Alpha8));
    return picture;
}

QImage TextureReader::image(const std::string& name)
{
    if (name.empty() || name.rfind(dummyName, 0) == 0) {
        return {};
    }
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
        reason = tooMuchMemory;
    }
    if (picture.isNull()) {
        leaveOut(name, reason);
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
    // Nothing in the content says what it is.
    QImage picture = suffix == "tga" ? decodedTga(content) : QImage();
    if (!picture.isNull()) {
        return picture;
    }
    QImageReader reader(&buffer);
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
    picture = reader.read();
    if (picture.isNull()) {
        reason = QStringLiteral("damaged: ") + reader.errorString();
    }
    return picture;
}

void TextureReader::leaveOut(const std::string& name, const QString& reason)
{
    notes_.add(QStringLiteral("texture \"%1\" is left out: %2").arg(QString::fromStdString(name), reason));
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
        QString file = fileBelow(home_, path);
        if (!file.isEmpty()) {
            return file;
        }
        const QString base = path.mid(path.lastIndexOf(QLatin1Char('/')) + 1);
        for (const QDir& folder : folders()) {
            file = fileBelow(folder, base);
            if (!file.isEmpty()) {
                return file;
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
