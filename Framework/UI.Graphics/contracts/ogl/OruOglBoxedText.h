#pragma once

#include "contracts/math/Angle.h"
#include "contracts/ogl/kelvar_ogl_api.h"

#include <QColor>
#include <QPoint>
#include <QSize>
#include <QString>
#include <Qt>

class OruOglText;

/// A text in a filled box with a frame, placed on one side of a point.
///
/// Works in the frame of OruOglText, pixel centers at whole numbers, in any GL state, and puts the state
/// back. The text is drawn in the color of its OruOglText, and upright whatever the angle there.
class KELVAR_OGL_API OruOglBoxedText
{
public:
    static constexpr int frameWidth = 1; ///< Pixels of the frame on each side.
    static constexpr int margin = 4;     ///< Pixels between frame and text on each side.
    static constexpr int shadowWidth = 2;

    /// The text that is drawn and measured; borrowed, must outlive this object.
    OruOglText* text;

    /// The box floats at the pointer. Its point is a pixel of the window then instead of one of the viewport,
    /// and in a viewport that begins right of the window's left edge it is moved right as far as it would be
    /// cut off there. It casts a translucent shadow, shadowWidth pixels wide, on the side away from its
    /// point, so that it stays on the named side as well; none along an axis on which the box is centered.
    /// Off after construction and after clear().
    bool floating = false;

    explicit OruOglBoxedText(OruOglText& boxedText);

    /// Back to a new object: black frame, white fill, towards larger x and larger y, no shadow.
    void clear();

    /// On which side of the point the box lies. Qt::AlignLeft: towards smaller x, its last column is the one
    /// before the point's; Qt::AlignRight: towards larger x, the point's column is its first.
    /// Qt::AlignBottom: towards smaller y, below the point's row; Qt::AlignTop: towards larger y, the point's
    /// row is its first. Qt::AlignHCenter and Qt::AlignVCenter: centered on the point. An axis without a flag
    /// is as after clear().
    void setAlignment(Qt::Alignment alignment);

    /// Frame and fill, alpha included. The frame is drawn round the fill, not below it.
    void setColor(const QColor& frame, const QColor& fill);

    /// The extent of the whole box round `string`, the shadow left out; (0, 0) for an empty text.
    QSize size(const QString& string) const;

    /// Draws the box at the pixel `point` of the viewport; see `floating`. An empty text draws nothing. While
    /// `text` is in select mode the box is filled with the current GL color.
    void draw(const QPoint& point, const QString& string) const;

private:
    void drawText(const QPoint& lowerLeft, const QString& string) const;

    Kelvar::Math::Angle angle_;
    Qt::Alignment alignment_;
    QColor frame_;
    QColor fill_;
};
