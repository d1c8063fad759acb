#include "contracts/ogl/OruOglCache.h"

#include "contracts/core/OruDebugLogger.h"
#include "contracts/core/OruResource.h"
#include "contracts/debug/dbgostream.h"
#include "contracts/debug/logger.h"
#include "contracts/ogl/OruOglFont.h"
#include "contracts/ogl/OruOglGl.h"
#include "contracts/ogl/internal/OruOglFeatures.h"
#include "contracts/ogl/internal/OruOglGlyphAtlas.h"
#include "contracts/ogl/internal/OruOglPixelTransfer.h"

#include <QFileInfo>
#include <QImage>
#include <QImageReader>

#include <algorithm>
#include <iterator>
#include <string>
#include <vector>

namespace {

/// The key of images without a transparent color; valid colors are opaque here.
constexpr unsigned int noColor = 0;

constexpr unsigned int colorBits = 0x00ffffff;

constexpr std::size_t rememberedSizes = 1000;

/// Sharp enough on a floor that is seen from low above it; more costs time and is hard to see.
constexpr float mostAnisotropy = 8.0f;

void refuse(const QString& path, const QString& reason)
{
    const kelvardebug::dbgostream stream = oru::debug_logger::debuglogger().derr(std::string());
    stream.buffer() << "image \"" << path.toStdString() << "\" is refused: " << reason.toStdString();
    stream << std::endl;
}

/// False, and a line: empty, or more than largestSide.
bool fits(const QSize& size, const QString& name)
{
    if (size.isEmpty()) {
        refuse(name, QLatin1String("no pixels"));
        return false;
    }
    const int largest = OruOglCache::largestSide;
    if (size.boundedTo(QSize(largest, largest)) != size) {
        refuse(name, QString::asprintf("%d x %d pixels, more than %d on a side", size.width(), size.height(),
                                       largest));
        return false;
    }
    return true;
}

/// Puts a reader of the image file to work; false for a file that is missing, and a line for one that is not
/// to be read. A folder, device or FIFO is not even opened: that might block.
bool openImage(const QString& path, QImageReader& reader)
{
    const QFileInfo info(path);
    if (path.isEmpty() || !info.exists()) {
        return false;
    }
    if (!info.isFile()) {
        refuse(path, QLatin1String("not a regular file"));
        return false;
    }
    reader.setFileName(path);
    const QSize size = reader.size();
    if (size.isEmpty()) {
        refuse(path, reader.errorString());
        return false;
    }
    return fits(size, path);
}

QSize readImageSize(const QString& path)
{
    QImageReader reader;
    return openImage(path, reader) ? reader.size() : QSize(0, 0);
}

QImage readImage(const QString& path)
{
    QImageReader reader;
    if (!openImage(path, reader)) {
        return QImage();
    }
    QImage image = reader.read();
    if (image.isNull()) {
        refuse(path, reader.errorString());
    }
    return image;
}

template <typename Fonts>
void dropExpired(Fonts& fonts)
{
    for (auto font = fonts.begin(); font != fonts.end();) {
        font = font->second.expired() ? fonts.erase(font) : std::next(font);
    }
}

unsigned int transparencyKey(const QColor& transparent)
{
    return transparent.isValid() ? transparent.rgb() : noColor;
}

void makeTransparent(QImage& image, unsigned int key)
{
    for (int y = 0; y < image.height(); ++y) {
        QRgb* line = reinterpret_cast<QRgb*>(image.scanLine(y));
        std::replace_if(
            line, line + image.width(),
            [key](QRgb pixel) { return (pixel & colorBits) == (key & colorBits); }, key & colorBits);
    }
}

/// An image as OpenGL takes it: the lowest line first, no larger than a texture may be.
QImage textureImage(const QImage& source, unsigned int key)
{
    QImage image = source.convertToFormat(QImage::Format_ARGB32);
    if (key != noColor) {
        makeTransparent(image, key);
    }
    GLint largest = 0;
    glGetIntegerv(GL_MAX_TEXTURE_SIZE, &largest);
    const QSize size = image.size().boundedTo(QSize(largest, largest));
    if (size != image.size()) {
        image = image.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
                    .convertToFormat(QImage::Format_ARGB32);
    }
    return image.mirrored();
}

GLint wrapMode(OruOglCache::Wrap wrap)
{
    // In the order of the enumerators.
    constexpr GLint modes[] = {GL_REPEAT, GL_MIRRORED_REPEAT, GL_CLAMP_TO_EDGE};
    return modes[static_cast<std::size_t>(wrap)];
}

/// How a texture is looked at.
struct Sampling
{
    OruOglCache::Wrap s = OruOglCache::Wrap::Clamp;
    OruOglCache::Wrap t = OruOglCache::Wrap::Clamp;
    /// Texels that are looked at along the slant of a surface; 1: none but those of the pixel.
    float anisotropy = 1.0f;
};

unsigned int uploadTexture(const QImage& image, const Sampling& sampling)
{
    GLuint name = 0;
    glPushAttrib(GL_TEXTURE_BIT);
    glGenTextures(1, &name);
    glBindTexture(GL_TEXTURE_2D, name);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR_MIPMAP_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, wrapMode(sampling.s));
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, wrapMode(sampling.t));
    if (sampling.anisotropy > 1.0f) {
        glTexParameterf(GL_TEXTURE_2D, GL_TEXTURE_MAX_ANISOTROPY_EXT, sampling.anisotropy);
    }
    glTexParameteri(GL_TEXTURE_2D, GL_GENERATE_MIPMAP, GL_TRUE);
    {
        const OruOglPixelTransfer transfer(4);
        glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, image.width(), image.height(), 0, GL_BGRA,
                     GL_UNSIGNED_INT_8_8_8_8_REV, image.constBits());
    }
    glPopAttrib();
    return name;
}

std::shared_ptr<OruOglTexture> makeTexture(const QImage& source, unsigned int key, const Sampling& sampling)
{
    auto texture = std::make_shared<OruOglTexture>();
    texture->size = source.size();
    texture->name = uploadTexture(textureImage(source, key), sampling);
    return texture;
}

/// The name names nothing any more.
void release(OruOglTexture& texture)
{
    glDeleteTextures(1, &texture.name);
    texture.name = 0;
}

} // namespace

OruOglCache::OruOglCache(const OruResource& resource)
    : resource_(resource)
{}

OruOglCache::~OruOglCache()
{
    clear();
}

std::shared_ptr<const OruOglTexture> OruOglCache::image(const QString& file, const QColor& transparent)
{
    const ImageKey key(file, transparencyKey(transparent));
    auto entry = images_.find(key);
    if (entry == images_.end()) {
        const QImage source = imageSize(file).isEmpty() ? QImage() : readImage(resource_.imageFile(file));
        if (source.isNull()) {
            sizes_[file] = QSize(0, 0);
            return nullptr;
        }
        releaseUnused();
        entry = images_.emplace(key, Image{makeTexture(source, key.second, Sampling()), 0}).first;
    }
    entry->second.lastUse = ++uses_;
    return entry->second.texture;
}

std::shared_ptr<const OruOglTexture> OruOglCache::texture(const QImage& image, Wrap s, Wrap t,
                                                          const QString& name)
{
    const TextureKey key(image.cacheKey(), s, t);
    auto entry = textures_.find(key);
    if (entry == textures_.end()) {
        releaseUnusedTextures();
        entry = textures_.emplace(key, nullptr).first;
        if (!fits(image.size(), name)) {
            return nullptr;
        }
        const float anisotropy = std::min(mostAnisotropy, OruOglFeatures::ofContext().anisotropy);
        entry->second = makeTexture(image, noColor, Sampling{s, t, anisotropy});
    }
    return entry->second;
}

const OruOglTexture& OruOglCache::blank()
{
    if (!blank_) {
        QImage white(1, 1, QImage::Format_ARGB32);
        white.fill(Qt::white);
        blank_ = makeTexture(white, noColor, Sampling());
    }
    return *blank_;
}

QSize OruOglCache::imageSize(const QString& file)
{
    auto entry = sizes_.find(file);
    if (entry == sizes_.end()) {
        if (sizes_.size() >= rememberedSizes) {
            sizes_.clear();
        }
        entry = sizes_.emplace(file, readImageSize(resource_.imageFile(file))).first;
    }
    return entry->second;
}

void OruOglCache::lookAgain(const QString& file)
{
    const auto entry = sizes_.find(file);
    if (entry != sizes_.end() && entry->second.isEmpty()) {
        sizes_.erase(entry);
    }
}

void OruOglCache::releaseUnusedTextures()
{
    for (auto entry = textures_.begin(); entry != textures_.end();) {
        const bool unused = entry->second.use_count() == 1;
        if (unused) {
            release(*entry->second);
        }
        entry = unused ? textures_.erase(entry) : std::next(entry);
    }
}

void OruOglCache::releaseUnused()
{
    releaseUnusedTextures();
    std::vector<std::map<ImageKey, Image>::iterator> unused;
    for (auto image = images_.begin(); image != images_.end(); ++image) {
        if (image->second.texture.use_count() == 1) {
            unused.push_back(image);
        }
    }
    if (unused.size() <= spareImages) {
        return;
    }
    std::sort(unused.begin(), unused.end(),
              [](const auto& a, const auto& b) { return a->second.lastUse > b->second.lastUse; });
    for (std::size_t i = spareImages; i < unused.size(); ++i) {
        release(*unused[i]->second.texture);
        images_.erase(unused[i]);
    }
}

std::shared_ptr<const OruOglFont> OruOglCache::font(const QString& face, unsigned int size)
{
    const auto request = std::make_pair(face, size);
    const auto known = fontsByFace_.find(request);
    std::shared_ptr<const OruOglFont> font = known != fontsByFace_.end() ? known->second.lock() : nullptr;
    if (!font) {
        dropExpired(fontsByFace_);
        dropExpired(fontsByKey_);
        font = std::make_shared<const OruOglFont>(resource_, face, size);
        const auto same = fontsByKey_.emplace(font->key(), font).first;
        font = same->second.lock();
        fontsByFace_[request] = font;
    }
    return font;
}

OruOglGlyphAtlas& OruOglCache::glyphs(const std::shared_ptr<const OruOglFont>& font)
{
    std::unique_ptr<OruOglGlyphAtlas>& atlas = atlases_[font->key()];
    if (!atlas) {
        atlas = std::make_unique<OruOglGlyphAtlas>(font);
    }
    return *atlas;
}

void OruOglCache::clear()
{
    for (const auto& image : images_) {
        release(*image.second.texture);
    }
    images_.clear();
    for (const auto& texture : textures_) {
        if (texture.second) {
            release(*texture.second);
        }
    }
    textures_.clear();
    if (blank_) {
        release(*blank_);
        blank_.reset();
    }
    sizes_.clear();
    atlases_.clear();
}

std::size_t OruOglCache::textureCount() const
{
    std::size_t count = images_.size() + (blank_ ? 1 : 0);
    for (const auto& texture : textures_) {
        count += texture.second ? 1 : 0;
    }
    for (const auto& atlas : atlases_) {
        count += atlas.second->pageCount();
    }
    return count;
}
