#pragma once

#include "contracts/ogl/kelvar_ogl_api.h"

#include <QPoint>
#include <QSize>
#include <QString>

#include <cstdint>
#include <memory>
#include <unordered_map>
#include <vector>

class OruResource;

/// A font at one size, rasterised by FreeType: measures and lays out text and makes the bitmaps of its
/// glyphs. Without OpenGL. All lengths are whole pixels, y upwards.
class KELVAR_OGL_API OruOglFont
{
public:
    /// Stands for a character that the font lacks: a box that the font itself need not have.
    static constexpr std::uint32_t missingGlyph = 0;

    /// A glyph of a text: `pen` is the point on its baseline, relative to the lower left of the text's box.
    struct PlacedGlyph
    {
        std::uint32_t glyph;
        QPoint pen;
    };

    struct Layout
    {
        QSize size;
        std::vector<PlacedGlyph> glyphs;
    };

    /// Coverage 0 to 255 of each pixel, row by row from the top. Its left column lies `left` pixels from the
    /// pen and its top row's upper edge `top` pixels above the baseline.
    struct Bitmap
    {
        int left = 0;
        int top = 0;
        int width = 0;
        int rows = 0;
        std::vector<std::uint8_t> coverage;
    };

    /// Opens the font that `face` names; see OruOglText. `xHeight` in pixels. Never fails: on a machine
    /// without any usable font each character is a box.
    OruOglFont(const OruResource& resource, const QString& face, unsigned int xHeight);
    ~OruOglFont();
    OruOglFont(const OruOglFont&) = delete;
    OruOglFont& operator=(const OruOglFont&) = delete;

    /// Tells fonts apart: file, face in the file and size. Equal keys give equal glyphs.
    const QString& key() const { return key_; }

    /// Empty without a font.
    QString family() const;

    int ascent() const { return ascent_; }
    int descent() const { return descent_; }
    int lineHeight() const { return lineHeight_; }

    Layout layout(const QString& text) const;
    QSize size(const QString& text) const;

    Bitmap rasterise(std::uint32_t glyph) const;

private:
    struct Face;

    void measure(unsigned int xHeight);
    Bitmap missingBox() const;
    int advance(std::uint32_t glyph) const;
    int kerning(std::uint32_t left, std::uint32_t right) const;
    std::uint32_t glyphOf(std::uint32_t character) const;

    std::unique_ptr<Face> face_;
    QString key_;
    int ascent_ = 0;
    int descent_ = 0;
    int lineHeight_ = 0;
    int boxWidth_ = 0;
    int boxHeight_ = 0;
    mutable std::unordered_map<std::uint32_t, int> advances_;
};
