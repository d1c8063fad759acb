#pragma once

#include "contracts/ogl/OruOglTexture.h"
#include "contracts/ogl/kelvar_ogl_api.h"

#include <QColor>
#include <QString>

#include <cstddef>
#include <map>
#include <memory>
#include <utility>

class OruOglFont;
class OruOglGlyphAtlas;
class OruResource;

/// The textures of one scene: images by file, glyphs by font. It owns their GL names and releases them when
/// it goes; needs the GL context for that unless nothing was ever uploaded.
class KELVAR_OGL_API OruOglCache
{
public:
    /// Files are looked up through `resource`, which must outlive the cache.
    explicit OruOglCache(const OruResource& resource);
    ~OruOglCache();
    OruOglCache(const OruOglCache&) = delete;
    OruOglCache& operator=(const OruOglCache&) = delete;

    const OruResource& resource() const { return resource_; }

    /// The texture of an image file, uploaded at the first request and kept; needs the context. Pixels whose
    /// red, green and blue are those of `transparent` become fully transparent; an invalid colour (the
    /// default) means none. The image's own alpha counts as well. Any image size will do; one beyond the
    /// largest texture is scaled down. Null for a file that is not found or no image; it is not tried again
    /// before clear(). The pointer is good until clear() or the end of the cache. Leaves the GL state as it
    /// was.
    const OruOglTexture* image(const QString& file, const QColor& transparent = QColor());

    /// The size of an image file in pixels; empty where there is none. Reads the file's head only and needs
    /// no context; remembered until clear().
    QSize imageSize(const QString& file);

    /// The glyph atlas of a font, shared by all texts in that font. Made at the first request.
    OruOglGlyphAtlas& glyphs(const std::shared_ptr<const OruOglFont>& font);

    /// Releases all textures and forgets which files failed. Pointers and glyph atlases given out are void.
    void clear();

    std::size_t textureCount() const;

private:
    using ImageKey = std::pair<QString, unsigned int>;

    const OruResource& resource_;
    std::map<ImageKey, OruOglTexture> images_;
    std::map<QString, QSize> sizes_;
    std::map<QString, std::unique_ptr<OruOglGlyphAtlas>> atlases_;
};
