#pragma once

#include "contracts/ogl/OruOglFont.h"
#include "contracts/ogl/kelvar_ogl_api.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <unordered_map>
#include <vector>

/// The glyphs of one font in texture pages (GL_ALPHA), each uploaded at its first use. Needs the GL context
/// for glyph(), for endFrame() where a page has grown old, and for its destruction unless it has no pages.
class KELVAR_OGL_API OruOglGlyphAtlas
{
public:
    /// Where a glyph lies: the texture, its place there in texels (the top row first) and its place from the
    /// pen, as in OruOglFont::Bitmap.
    struct Glyph
    {
        unsigned int texture = 0; ///< 0: nothing to draw, as for a blank.
        int s = 0;
        int t = 0;
        int left = 0;
        int top = 0;
        int width = 0;
        int rows = 0;
        std::size_t page = 0;
    };

    /// Frames after which a page that no text used is given up.
    static constexpr std::uint64_t pageLife = 600;

    explicit OruOglGlyphAtlas(std::shared_ptr<const OruOglFont> font);
    ~OruOglGlyphAtlas();
    OruOglGlyphAtlas(const OruOglGlyphAtlas&) = delete;
    OruOglGlyphAtlas& operator=(const OruOglGlyphAtlas&) = delete;

    /// Texels on each side of a page.
    int pageSize() const { return pageSize_; }

    /// The glyph, uploaded if it is not yet there. Leaves the texture of the active unit changed.
    Glyph glyph(std::uint32_t index);

    /// Counts a frame. Once a page has not been used for pageLife frames all pages are released, and what is
    /// still in use comes back by itself, close together.
    void endFrame();

    std::size_t pageCount() const { return pages_.size(); }

private:
    // Glyphs stand in rows: `x`, `y` is the next free place in the row at hand, `rowHeight` its height.
    struct Page
    {
        unsigned int texture = 0;
        int x = 0;
        int y = 0;
        int rowHeight = 0;
        std::uint64_t lastFrame = 0;
    };

    void insert(Glyph& glyph);
    bool place(Page& page, Glyph& glyph) const;
    void addPage();
    void upload(const Glyph& glyph, const OruOglFont::Bitmap& bitmap) const;

    std::shared_ptr<const OruOglFont> font_;
    int pageSize_;
    std::uint64_t frame_ = 0;
    std::vector<Page> pages_;
    std::unordered_map<std::uint32_t, Glyph> glyphs_;
};
