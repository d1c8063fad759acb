#include "contracts/ogl/OruOglCache.h"

#include "contracts/core/OruResource.h"
#include "contracts/ogl/OruOglFont.h"
#include "contracts/ogl/OruOglGl.h"
#include "contracts/ogl/OruOglGlyphAtlas.h"
#include "contracts/ogl/OruOglPixelTransfer.h"

#include <QImage>
#include <QImageReader>

#include <algorithm>

namespace {

// The key of images without a transparent colour; valid colours are opaque here.
constexpr unsigned int noColor = 0;

constexpr unsigned int colorBits = 0x00ffffff;

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

// An image as OpenGL takes it: the lowest line first, no larger than a texture may be.
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

unsigned int uploadTexture(const QImage& image)
{
    GLuint name = 0;
    glPushAttrib(GL_TEXTURE_BIT);
    glGenTextures(1, &name);
    glBindTexture(GL_TEXTURE_2D, name);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR_MIPMAP_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    glTexParameteri(GL_TEXTURE_2D, GL_GENERATE_MIPMAP, GL_TRUE);
    {
        const OruOglPixelTransfer transfer(4);
        glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, image.width(), image.height(), 0, GL_BGRA,
                     GL_UNSIGNED_INT_8_8_8_8_REV, image.constBits());
    }
    glPopAttrib();
    return name;
}

} // namespace

OruOglCache::OruOglCache(const OruResource& resource)
    : resource_(resource)
{}

OruOglCache::~OruOglCache()
{
    clear();
}

const OruOglTexture* OruOglCache::image(const QString& file, const QColor& transparent)
{
    const ImageKey key(file, transparencyKey(transparent));
    auto entry = images_.find(key);
    if (entry == images_.end()) {
        OruOglTexture texture;
        const QImage source(resource_.imageFile(file));
        if (!source.isNull()) {
            texture.size = source.size();
            texture.name = uploadTexture(textureImage(source, key.second));
        }
        entry = images_.emplace(key, texture).first;
    }
    return entry->second.name != 0 ? &entry->second : nullptr;
}

QSize OruOglCache::imageSize(const QString& file)
{
    auto entry = sizes_.find(file);
    if (entry == sizes_.end()) {
        const QSize size = QImageReader(resource_.imageFile(file)).size();
        entry = sizes_.emplace(file, size.isValid() ? size : QSize(0, 0)).first;
    }
    return entry->second;
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
        if (image.second.name != 0) {
            glDeleteTextures(1, &image.second.name);
        }
    }
    images_.clear();
    sizes_.clear();
    atlases_.clear();
}

std::size_t OruOglCache::textureCount() const
{
    std::size_t count = 0;
    for (const auto& image : images_) {
        count += image.second.name != 0 ? 1 : 0;
    }
    for (const auto& atlas : atlases_) {
        count += atlas.second->pageCount();
    }
    return count;
}
