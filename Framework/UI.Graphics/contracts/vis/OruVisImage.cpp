#include "contracts/vis/OruVisImage.h"

#include "contracts/core/OruModifiedGroup.h"
#include "contracts/core/OruPropertyKind.h"
#include "contracts/ogl/OruOglCache.h"
#include "contracts/ogl/OruOglFlatState.h"
#include "contracts/ogl/OruOglFunctions.h"
#include "contracts/ogl/OruOglGl.h"
#include "contracts/ogl/OruOglTexture.h"
#include "contracts/vis/OruVisHitProperty.h"
#include "contracts/vis/OruVisHitRecordList.h"
#include "contracts/vis/OruVisPickVolume.h"
#include "contracts/vis/internal/OruVisAlignmentKind.h"

#include <algorithm>
#include <cmath>

const QString OruVisImage::typeString = QStringLiteral("vis.image");

namespace {

constexpr OruPropertyKind::Choice unitWords[] = {{"0", "pixels"}, {"1", "percent of the viewport's height"}};
constexpr OruPropertyKind units = OruPropertyKind::of<int>().oneOf(unitWords);
constexpr OruPropertyKind heights = OruPropertyKind::of<float>().from(0.0);

/// The first pixel of `extent` pixels between two margins, at the low end, the high end or between them.
double aligned(double extent, double available, double lowMargin, double highMargin, bool low, bool high)
{
    if (low) {
        return lowMargin;
    }
    const double room = available - lowMargin - highMargin - extent;
    return lowMargin + (high ? room : room / 2.0);
}

void drawTexture(const OruOglTexture& texture, const QRect& place, bool pixelated)
{
    const OruOglFlatState state;
    state.blend();
    glEnable(GL_TEXTURE_2D);
    glBindTexture(GL_TEXTURE_2D, texture.name);
    // The texture is shared by all that show this file, so its filter is set at each use.
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, pixelated ? GL_NEAREST : GL_LINEAR_MIPMAP_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, pixelated ? GL_NEAREST : GL_LINEAR);
    glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_REPLACE);
    // Pixel centers lie at whole numbers, pixel edges between them: an image of the size shown stays sharp.
    const double left = place.x() - 0.5 - OruOglOffCenter;
    const double bottom = place.y() - 0.5 - OruOglOffCenter;
    const double right = left + place.width();
    const double top = bottom + place.height();
    glBegin(GL_QUADS);
    glTexCoord2d(0.0, 0.0);
    glVertex2d(left, bottom);
    glTexCoord2d(1.0, 0.0);
    glVertex2d(right, bottom);
    glTexCoord2d(1.0, 1.0);
    glVertex2d(right, top);
    glTexCoord2d(0.0, 1.0);
    glVertex2d(left, top);
    glEnd();
}

} // namespace

OruVisImage::OruVisImage(OruModifiedGroup& modifiedGroup)
    : OruVisualization(modifiedGroup, typeString)
    , order(*this, QStringLiteral("order"), 0, QString())
    , alignment(*this, QStringLiteral("alignment"), static_cast<int>(Qt::AlignTop | Qt::AlignRight),
                QString())
    , unit(*this, QStringLiteral("unit"), static_cast<int>(Pixels), QString())
    , marginLeft(*this, QStringLiteral("marginLeft"), 4.0f, QString())
    , marginRight(*this, QStringLiteral("marginRight"), 4.0f, QString())
    , marginTop(*this, QStringLiteral("marginTop"), 4.0f, QString())
    , marginBottom(*this, QStringLiteral("marginBottom"), 4.0f, QString())
    , height(*this, QStringLiteral("height"), 64.0f, QString())
    , minimumHeight(*this, QStringLiteral("minimumHeight"), 16.0f, QString())
    , file(*this, QStringLiteral("file"), QString(), QString())
    , pixelated(*this, QStringLiteral("pixelated"), false, QString())
    , transparentColor(*this, QStringLiteral("transparentColor"), QColor(Qt::white), QString())
    , useTransparentColor(*this, QStringLiteral("useTransparentColor"), false, QString())
{
    alignment.setKind(oru::alignmentKind);
    unit.setKind(units);
    height.setKind(heights);
    minimumHeight.setKind(heights);
    fileSlot_ = &string().slot(file.name());
    hitProperties.insert(hitName_.value(), OruVisHitProperty(this, nullptr));
}

QRect OruVisImage::placeIn(const QSize& viewportSize, const QSize& imageSize) const
{
    if (viewportSize.isEmpty() || imageSize.isEmpty()) {
        return QRect();
    }
    const double scale = unit.value() == PercentOfViewportHeight ? viewportSize.height() / 100.0 : 1.0;
    const double left = scale * marginLeft.value();
    const double right = scale * marginRight.value();
    const double top = scale * marginTop.value();
    const double bottom = scale * marginBottom.value();
    const double aspect = static_cast<double>(imageSize.width()) / imageSize.height();
    const double shown = std::min({scale * height.value(), viewportSize.height() - top - bottom,
                                   (viewportSize.width() - left - right) / aspect});
    const int align = alignment.value();
    const double x = aligned(shown * aspect, viewportSize.width(), left, right, align & Qt::AlignLeft,
                             align & Qt::AlignRight);
    const double y =
        aligned(shown, viewportSize.height(), bottom, top, align & Qt::AlignBottom, align & Qt::AlignTop);
    // What is stored may be any number, also one that is none or too large for pixels.
    constexpr double farthest = 1e6;
    const bool sane = std::abs(x) < farthest && std::abs(y) < farthest && shown * aspect < farthest;
    if (!sane || !(shown >= std::max(1.0, static_cast<double>(minimumHeight.value())))) {
        return QRect();
    }
    return QRect(static_cast<int>(std::lround(x)), static_cast<int>(std::lround(y)),
                 std::max(1, static_cast<int>(std::lround(shown * aspect))),
                 static_cast<int>(std::lround(shown)));
}

void OruVisImage::draw2d(const DrawContext& context)
{
    const QColor transparent = useTransparentColor.value() ? transparentColor.value() : QColor();
    texture_ = context.cache.image(fileFor(context.cache), transparent);
    if (!texture_) {
        return;
    }
    const QRect place = placeIn(QSize(context.viewport.width, context.viewport.height), texture_->size);
    if (!place.isNull()) {
        drawTexture(*texture_, place, pixelated.value());
    }
}

OruVisHitRecordList OruVisImage::select2d(const SelectContext& context)
{
    OruVisHitRecordList hits;
    const QRect place = placeIn(QSize(context.viewport.width, context.viewport.height),
                                context.cache.imageSize(fileFor(context.cache)));
    const OruVisPickVolume pick(context);
    const int right = place.x() + place.width() - 1;
    const int top = place.y() + place.height() - 1;
    if (!place.isNull() && pick.meets2d(place.x(), place.y(), right, top)) {
        hits.add({0.0, hitName_.value()}, OruVisHitRecordList::Rank::Flat2d,
                 pick.distance2d(place.x(), place.y(), right, top), handler_, this);
    }
    return hits;
}

/// The file; one that was missing when it was named before may have come by now.
const QString& OruVisImage::fileFor(OruOglCache& cache)
{
    if (fileWrites_ != fileSlot_->writes) {
        fileWrites_ = fileSlot_->writes;
        cache.lookAgain(file.value());
    }
    return file.value();
}

int OruVisImage::drawOrder() const
{
    return order.value();
}
