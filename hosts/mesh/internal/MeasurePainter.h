#pragma once

#include "contracts/math/Vector3.h"
#include "contracts/ogl/OruOglText.h"
#include "contracts/vis/OruVisualization.h"
#include "hosts/mesh/PartView.h"
#include "hosts/mesh/SnapFinder.h"

#include <QColor>
#include <QPointF>
#include <QSize>
#include <QString>

#include <memory>

namespace hostkit {

/// Draws the flat parts of what is measured: labels, ends and marks, over the finished picture. Places are
/// those of the 2D passes: pixels of the viewport with their centers at whole numbers.
///
/// All but ready() belongs into an OruOglFlatState that blends.
class MeasurePainter
{
public:
    static constexpr int usualTextSize = 7;
    static QColor usualColor();

    /// In pixels; what else has a size goes by the text, too, so that large pictures look as the window does.
    static float lineWidthFor(int textSize);

    static QPointF pixelOf(const Kelvar::Math::Vector3& place, const PartView& view);

    /// To be called ahead of what is drawn in a pass.
    void ready(const OruVisualization::DrawContext& context, const QColor& color, int textSize);

    /// The end of a line.
    void drawEnd(const QPointF& at) const;

    /// What tells the pointer that it has found something of that kind.
    void drawMark(const QPointF& at, SnapFinder::Kind kind) const;

    void drawLine(const QPointF& from, const QPointF& to) const;

    /// On the middle of a line, or over its higher end where it is too short for that.
    void drawLabelOn(const QPointF& from, const QPointF& to, const QString& text);

    void drawLabelBelow(const QPointF& at, const QString& text);

private:
    void drawLabel(const QPointF& center, const QString& text);
    double scale() const { return static_cast<double>(textSize_) / usualTextSize; }
    QSize plateSize(const QString& text) const;

    QColor color_;
    int textSize_ = 0;
    QSize viewport_;
    /// Made for a cache and a size; null ahead of the first ready().
    std::unique_ptr<OruOglText> text_;
    const OruOglCache* cache_ = nullptr;
    /// Where the label was last.
    QPointF kept_;
};

} // namespace hostkit
