#include "contracts/ogl/internal/OruOglGlyphAtlas.h"

#include "contracts/ogl/OruOglGl.h"
#include "contracts/ogl/internal/OruOglPixelTransfer.h"

#include <algorithm>
#include <utility>

namespace {

/// Free texels right of and below each glyph, so that turned text does not show its neighbours.
constexpr int gap = 1;

/// Room for about 500 glyphs of everyday text; large type gets larger pages.
constexpr int smallPage = 512;
constexpr int largePage = 2048;
constexpr int largeLine = 64;

} // namespace

OruOglGlyphAtlas::OruOglGlyphAtlas(std::shared_ptr<const OruOglFont> font)
    : font_(std::move(font))
    , pageSize_(font_->lineHeight() < largeLine ? smallPage : largePage)
{}

OruOglGlyphAtlas::~OruOglGlyphAtlas()
{
    for (const Page& page : pages_) {
        glDeleteTextures(1, &page.texture);
    }
}

OruOglGlyphAtlas::Glyph OruOglGlyphAtlas::glyph(std::uint32_t index)
{
    const auto known = glyphs_.find(index);
    if (known != glyphs_.end()) {
        if (known->second.texture != 0) {
            pages_[known->second.page].lastFrame = frame_;
        }
        return known->second;
    }
    const OruOglFont::Bitmap bitmap = font_->rasterise(index);
    Glyph made;
    made.left = bitmap.left;
    made.top = bitmap.top;
    made.width = bitmap.width;
    made.rows = bitmap.rows;
    const bool fits = std::max(bitmap.width, bitmap.rows) + gap <= pageSize_;
    if (!bitmap.coverage.empty() && fits) {
        insert(made);
        upload(made, bitmap);
    } else if (!fits) {
        made = glyph(OruOglFont::missingGlyph);
    }
    glyphs_.emplace(index, made);
    return made;
}

void OruOglGlyphAtlas::insert(Glyph& glyph)
{
    std::size_t page = 0;
    while (page < pages_.size() && !place(pages_[page], glyph)) {
        ++page;
    }
    if (page == pages_.size()) {
        addPage();
        place(pages_.back(), glyph);
    }
    pages_[page].lastFrame = frame_;
    glyph.page = page;
    glyph.texture = pages_[page].texture;
}

bool OruOglGlyphAtlas::place(Page& page, Glyph& glyph) const
{
    const int width = glyph.width + gap;
    const int height = glyph.rows + gap;
    const bool sameRow = page.x + width <= pageSize_;
    const int x = sameRow ? page.x : 0;
    const int y = sameRow ? page.y : page.y + page.rowHeight;
    if (y + height > pageSize_) {
        return false;
    }
    page.rowHeight = sameRow ? std::max(page.rowHeight, height) : height;
    page.x = x + width;
    page.y = y;
    glyph.s = x;
    glyph.t = y;
    return true;
}

void OruOglGlyphAtlas::addPage()
{
    Page page;
    glGenTextures(1, &page.texture);
    glBindTexture(GL_TEXTURE_2D, page.texture);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    const std::vector<std::uint8_t> blank(static_cast<std::size_t>(pageSize_) * pageSize_, 0);
    const OruOglPixelTransfer transfer(1);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_ALPHA8, pageSize_, pageSize_, 0, GL_ALPHA, GL_UNSIGNED_BYTE,
                 blank.data());
    pages_.push_back(page);
}

void OruOglGlyphAtlas::upload(const Glyph& glyph, const OruOglFont::Bitmap& bitmap) const
{
    const OruOglPixelTransfer transfer(1);
    glBindTexture(GL_TEXTURE_2D, glyph.texture);
    glTexSubImage2D(GL_TEXTURE_2D, 0, glyph.s, glyph.t, glyph.width, glyph.rows, GL_ALPHA, GL_UNSIGNED_BYTE,
                    bitmap.coverage.data());
}

void OruOglGlyphAtlas::endFrame()
{
    ++frame_;
    const auto old = [this](const Page& page) { return frame_ - page.lastFrame > pageLife; };
    if (std::none_of(pages_.begin(), pages_.end(), old)) {
        return;
    }
    for (const Page& page : pages_) {
        glDeleteTextures(1, &page.texture);
    }
    pages_.clear();
    glyphs_.clear();
}
