#pragma once

#include "contracts/math/Angle.h"
#include "contracts/ogl/kelvar_ogl_api.h"

#include <QColor>
#include <QPoint>
#include <QSize>
#include <QString>

#include <memory>

class OruOglCache;
class OruOglFont;

/// Text in pixels, drawn from a glyph atlas.
///
/// Works in the frame of gluOrtho2D: current matrices that put pixel centers at whole numbers. Glyphs then
/// cover whole pixels and are drawn as they were rasterised, without filtering. A text may have several
/// lines, separated by '\n', the first one on top. Characters that the font lacks show as a box. Drawing
/// leaves the GL state as it was; it sets what it needs by itself.
class KELVAR_OGL_API OruOglText
{
public:
    /// The font value that stands for the framework's own choice: DejaVu Sans, or else the system's sans
    /// serif.
    static const char* const defaultFace;

    /// `size` is the height of a small x in pixels (7 makes 13 pixels to the em with DejaVu Sans), kept
    /// within 3 and 100. `fontFace` is a font file, absolute or known to the cache's OruResource, or the name
    /// of a family that fontconfig knows, or "_default_", which also stands in where a font is not to be had.
    /// Needs no GL context. The cache must outlive the text.
    OruOglText(OruOglCache& cache, unsigned int size, const QString& fontFace);
    ~OruOglText();
    OruOglText(const OruOglText&) = delete;
    OruOglText& operator=(const OruOglText&) = delete;

    /// Starts a frame: color and angle are those of a new text again, and glyph textures that no text used
    /// for 600 frames are released, and images that nobody uses. Needs the context only where there are such
    /// textures.
    void clear();

    /// The extent of a text in pixels: the widest line's advance by the number of lines times the line
    /// height. (0, 0) for an empty text. Needs no GL context.
    QSize size(const QString& text) const;

    /// The color of what is drawn from here on, alpha included. White in a new text.
    void setColor(const QColor& color);
    const QColor& color() const { return color_; }

    /// In select mode a text is drawn as its box, filled with the current GL color instead of setColor's.
    void setSelectMode(bool on);
    bool selectMode() const { return selectMode_; }

    /// Turns what is drawn from here on about its lower left point, counter-clockwise. Quarter turns stay
    /// crisp; 0 in a new text.
    void setAngle(const Kelvar::Math::Angle& angle);
    const Kelvar::Math::Angle& angle() const { return angle_; }

    /// Draws with the box of size(text) starting at the pixel `lowerLeft` and growing right and up. An empty
    /// text draws nothing.
    void draw(const QPoint& lowerLeft, const QString& text) const;

    /// From the bottom of a line's box to its baseline, and from one line to the next, in pixels.
    int descent() const;
    int lineHeight() const;

    /// The family that was found, or empty where the machine has no usable font at all.
    QString family() const;

private:
    OruOglCache& cache_;
    std::shared_ptr<const OruOglFont> font_;
    QColor color_;
    Kelvar::Math::Angle angle_;
    bool selectMode_ = false;
};
