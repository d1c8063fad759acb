#include "contracts/ogl/OruOglText.h"

#include "contracts/ogl/OruOglCache.h"
#include "contracts/ogl/OruOglFlatState.h"
#include "contracts/ogl/OruOglFont.h"
#include "contracts/ogl/OruOglFunctions.h"
#include "contracts/ogl/OruOglGl.h"
#include "contracts/ogl/internal/OruOglFontFile.h"
#include "contracts/ogl/internal/OruOglGlyphAtlas.h"

#include <QRectF>

#include <algorithm>
#include <vector>

const char* const OruOglText::defaultFace = oru::defaultFace;

namespace {

/// Sends rectangles of whole pixels, relative to the lower left pixel of a text, turned about that pixel's
/// center.
class TurnedRectangles
{
public:
    TurnedRectangles(const QPoint& origin, const Kelvar::Math::Angle& angle)
        : origin_(origin)
        , sin_(angle.sin())
        , cos_(angle.cos())
    {}

    // Left and bottom pixel and the size; `texels` covers it, with t downwards.
    void send(const QRectF& texels, int left, int bottom, int width, int height) const
    {
        const double x = left - 0.5;
        const double y = bottom - 0.5;
        corner(texels.left(), texels.bottom(), x, y);
        corner(texels.right(), texels.bottom(), x + width, y);
        corner(texels.right(), texels.top(), x + width, y + height);
        corner(texels.left(), texels.top(), x, y + height);
    }

private:
    void corner(double s, double t, double x, double y) const
    {
        glTexCoord2d(s, t);
        glVertex2d(origin_.x() + cos_ * x - sin_ * y, origin_.y() + sin_ * x + cos_ * y);
    }

    QPoint origin_;
    double sin_;
    double cos_;
};

struct DrawnGlyph
{
    OruOglGlyphAtlas::Glyph glyph;
    QPoint pen;
};

/// All glyphs with something to show, those of one texture together.
std::vector<DrawnGlyph> drawnGlyphs(OruOglGlyphAtlas& atlas, const OruOglFont::Layout& layout)
{
    std::vector<DrawnGlyph> drawn;
    drawn.reserve(layout.glyphs.size());
    for (const OruOglFont::PlacedGlyph& placed : layout.glyphs) {
        const OruOglGlyphAtlas::Glyph glyph = atlas.glyph(placed.glyph);
        if (glyph.texture != 0) {
            drawn.push_back({glyph, placed.pen});
        }
    }
    std::stable_sort(drawn.begin(), drawn.end(), [](const DrawnGlyph& a, const DrawnGlyph& b) {
        return a.glyph.texture < b.glyph.texture;
    });
    return drawn;
}

void bindPage(GLuint texture, bool crisp)
{
    const GLint filter = crisp ? GL_NEAREST : GL_LINEAR;
    glBindTexture(GL_TEXTURE_2D, texture);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, filter);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, filter);
}

void drawGlyphs(const std::vector<DrawnGlyph>& drawn, const TurnedRectangles& rectangles, int pageSize,
                bool crisp)
{
    const double texel = 1.0 / pageSize;
    for (std::size_t i = 0; i < drawn.size();) {
        const GLuint texture = drawn[i].glyph.texture;
        bindPage(texture, crisp);
        glBegin(GL_QUADS);
        for (; i < drawn.size() && drawn[i].glyph.texture == texture; ++i) {
            const OruOglGlyphAtlas::Glyph& glyph = drawn[i].glyph;
            rectangles.send(QRectF(glyph.s * texel, glyph.t * texel, glyph.width * texel, glyph.rows * texel),
                            drawn[i].pen.x() + glyph.left, drawn[i].pen.y() + glyph.top - glyph.rows,
                            glyph.width, glyph.rows);
        }
        glEnd();
    }
}

bool isQuarterTurn(const Kelvar::Math::Angle& angle)
{
    return angle.sin() == 0.0 || angle.cos() == 0.0;
}

} // namespace

OruOglText::OruOglText(OruOglCache& cache, unsigned int size, const QString& fontFace)
    : cache_(cache)
    , font_(cache.font(fontFace, size))
    , color_(Qt::white)
{}

OruOglText::~OruOglText() = default;

void OruOglText::clear()
{
    color_ = Qt::white;
    angle_ = Kelvar::Math::Angle();
    cache_.glyphs(font_).endFrame();
    cache_.releaseUnused();
}

QSize OruOglText::size(const QString& text) const
{
    return font_->size(text);
}

void OruOglText::setColor(const QColor& color)
{
    color_ = color;
}

void OruOglText::setSelectMode(bool on)
{
    selectMode_ = on;
}

void OruOglText::setAngle(const Kelvar::Math::Angle& angle)
{
    angle_ = angle;
}

void OruOglText::draw(const QPoint& lowerLeft, const QString& text) const
{
    const OruOglFont::Layout layout = font_->layout(text);
    if (layout.size.isEmpty()) {
        return;
    }
    const OruOglFlatState state;
    const TurnedRectangles rectangles(lowerLeft, angle_);
    if (selectMode_) {
        glBegin(GL_QUADS);
        rectangles.send(QRectF(), 0, 0, layout.size.width(), layout.size.height());
        glEnd();
        return;
    }
    state.blend();
    glEnable(GL_TEXTURE_2D);
    glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_MODULATE);
    glColor(color_);
    OruOglGlyphAtlas& atlas = cache_.glyphs(font_);
    drawGlyphs(drawnGlyphs(atlas, layout), rectangles, atlas.pageSize(), isQuarterTurn(angle_));
}

int OruOglText::descent() const
{
    return font_->descent();
}

int OruOglText::lineHeight() const
{
    return font_->lineHeight();
}

QString OruOglText::family() const
{
    return font_->family();
}
