#pragma once

#include "contracts/ogl/OruOglTexture.h"
#include "contracts/ogl/kelvar_ogl_api.h"

#include <QColor>
#include <QString>

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <tuple>
#include <utility>

class OruOglFont;
class OruOglGlyphAtlas;
class OruResource;
class QImage;

/// The textures of one scene: images by file, images in memory, glyphs by font. It owns their GL names and
/// releases them when it goes; needs the GL context for that unless nothing was ever uploaded.
class KELVAR_OGL_API OruOglCache
{
public:
    /// Files are looked up through `resource`, which must outlive the cache.
    explicit OruOglCache(const OruResource& resource);
    ~OruOglCache();
    OruOglCache(const OruOglCache&) = delete;
    OruOglCache& operator=(const OruOglCache&) = delete;

    const OruResource& resource() const { return resource_; }

    /// Pixels on a side beyond which an image file is refused.
    static constexpr int largestSide = 16384;

    /// How many textures are kept that nobody holds.
    static constexpr std::size_t spareImages = 16;

    /// The texture of an image file, uploaded at the first request; needs the context. It is kept as long as
    /// somebody holds the pointer, and a while longer: see releaseUnused. Pixels whose red, green and blue
    /// are those of `transparent` become fully transparent; an invalid color (the default) means none. The
    /// image's own alpha counts as well. An image beyond the largest texture is scaled down.
    ///
    /// Null for a file that is not found, and for one that is no regular file, no image or larger than
    /// largestSide: that is a line on the error stream. It is not tried again before lookAgain or clear().
    /// After clear() and behind the end of the cache a pointer that is still held names no texture. Leaves
    /// the GL state as it was.
    std::shared_ptr<const OruOglTexture> image(const QString& file, const QColor& transparent = QColor());

    /// The size of an image file in pixels; empty where image() gives null. Reads the file's head only and
    /// needs no context; remembered like a failure, for some 1,000 files.
    QSize imageSize(const QString& file);

    /// Forgets that `file` was missing or refused.
    void lookAgain(const QString& file);

    /// What shows beyond the edges of a texture.
    enum class Wrap
    {
        Repeat,
        Mirror,
        Clamp
    };

    /// The texture of an image in memory for surfaces: one for all that ask with the same pixels
    /// (QImage::cacheKey) and wraps to the right (`s`) and upwards (`t`). As with image(), but it is released
    /// as soon as nobody holds it, its filter follows the slant of a surface where OpenGL can, and null is
    /// given for an image that is empty or larger than largestSide: a line on the error stream, the first
    /// time, that calls the image `name`.
    std::shared_ptr<const OruOglTexture> texture(const QImage& image, Wrap s, Wrap t, const QString& name);

    /// A texture of one white texel; the cache's own.
    const OruOglTexture& blank();

    /// Releases the textures of images that nobody holds, but for the last spareImages of those of files. To
    /// be called once a frame; needs the context where there are any.
    void releaseUnused();

    /// The font that `face` names at this size, see OruOglText: one for all who ask as long as somebody holds
    /// it, also if they name it differently.
    std::shared_ptr<const OruOglFont> font(const QString& face, unsigned int size);

    /// The glyph atlas of a font, shared by all texts in that font. Made at the first request.
    OruOglGlyphAtlas& glyphs(const std::shared_ptr<const OruOglFont>& font);

    /// Releases all textures and forgets which files failed. Pointers and glyph atlases given out are void.
    void clear();

    std::size_t textureCount() const;

private:
    using ImageKey = std::pair<QString, unsigned int>;

    struct Image
    {
        std::shared_ptr<OruOglTexture> texture;
        std::uint64_t lastUse;
    };

    /// Pixels and wraps.
    using TextureKey = std::tuple<std::int64_t, Wrap, Wrap>;

    void releaseUnusedTextures();

    const OruResource& resource_;
    std::map<ImageKey, Image> images_;
    std::map<TextureKey, std::shared_ptr<OruOglTexture>> textures_; // null: refused
    std::shared_ptr<OruOglTexture> blank_;                          // null until asked for
    std::uint64_t uses_ = 0;
    std::map<QString, QSize> sizes_; // empty: missing or refused
    std::map<std::pair<QString, unsigned int>, std::weak_ptr<const OruOglFont>> fontsByFace_;
    std::map<QString, std::weak_ptr<const OruOglFont>> fontsByKey_;
    std::map<QString, std::unique_ptr<OruOglGlyphAtlas>> atlases_;
};
