// What OruSceneRender draws over the finished picture: tooltip, rubber band, frame and performance text.

#include "Scene/render/OruProcessTimes.h"
#include "Scene/render/OruSceneRender.h"
#include "contracts/core/OruNearestInt.h"
#include "contracts/ogl/OruOgl2D.h"
#include "contracts/ogl/OruOglBoxedText.h"
#include "contracts/ogl/OruOglFunctions.h"
#include "contracts/ogl/OruOglGl.h"
#include "contracts/ogl/OruOglViewport.h"

#include <QSize>

#include <algorithm>
#include <cstdint>

namespace {

/// Room in pixels between the pointer and the tooltip below it.
const int tooltipGap = 24;

struct TooltipPlace
{
    Qt::Alignment side;
    QPoint position;
};

/// Below the pointer, on the side where there is room; above it where there is none below.
TooltipPlace placeTooltip(const OruOglViewport& viewport, const QPoint& point, const QSize& size)
{
    // A pointer may stand anywhere, so the sums have 64 bits.
    const std::int64_t x = point.x();
    const std::int64_t y = point.y();
    const bool fitsRight = x + size.width() + tooltipGap <= viewport.width;
    Qt::Alignment side = (fitsRight ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignBottom;
    int shift = -tooltipGap;
    if (y - (2 * std::int64_t(size.height()) + tooltipGap) < viewport.y) {
        side = Qt::AlignRight | Qt::AlignTop;
        shift = 0;
    }
    return {side, QPoint(std::max(point.x(), 0), std::max(oru::nearestInt(y + shift), 1))};
}

/// The corner of the band across from its x and y.
QPoint farCorner(const OruOglViewport& band)
{
    return {oru::nearestInt(std::int64_t(band.x) + band.width),
            oru::nearestInt(std::int64_t(band.y) + band.height)};
}

/// The four corners of the band.
void drawBandOutline(const OruOglViewport& band)
{
    const QPoint corner = farCorner(band);
    glBegin(GL_QUADS);
    glVertex2i(band.x, band.y);
    glVertex2i(corner.x(), band.y);
    glVertex2i(corner.x(), corner.y());
    glVertex2i(band.x, corner.y());
    glEnd();
}

/// The two long sides of a band without height or width are one line and cancel each other; the third stroke
/// shows.
void drawBandLine(const OruOglViewport& band)
{
    const QPoint corner = farCorner(band);
    glBegin(GL_LINES);
    glVertex2i(band.x, band.y);
    glVertex2i(corner.x(), corner.y());
    glEnd();
}

void drawFrameStrip(const OruOglViewport& viewport)
{
    const int right = viewport.width - 1;
    const int top = viewport.height - 1;
    glBegin(GL_LINE_STRIP);
    glVertex2i(0, 0);
    glVertex2i(right, 0);
    glVertex2i(right, top);
    glVertex2i(0, top);
    glVertex2i(0, 0);
    glEnd();
}

} // namespace

void OruSceneRender::drawTooltip(OruOglBoxedText& boxed, const OruOglViewport& viewport, const QPoint& point,
                                 const QString& tip)
{
    boxed.clear();
    const TooltipPlace place = placeTooltip(viewport, point, boxed.text->size(tip));
    boxed.clear();
    boxed.floating = true;
    boxed.setColor(QColor(Qt::black), QColor::fromRgb(255, 255, 225, 255));
    boxed.text->setColor(QColor(Qt::black));
    boxed.setAlignment(place.side);
    boxed.draw(place.position, tip);
}

void OruSceneRender::drawBox(const OruOglViewport& box, const OruOglViewport& viewport)
{
    const OruOglViewport normalized = OruOglViewport::normalized(box);
    const OruOgl2D pixels(viewport);
    pixels.begin();
    glLoadIdentity();
    glPushAttrib(GL_LINE_BIT);
    glColor(QColor(Qt::white), 17.0f);
    glLineWidth(2.0f);
    // Inverting what lies below shows the band on dark and on light pictures alike.
    glEnable(GL_COLOR_LOGIC_OP);
    glLogicOp(GL_XOR);
    drawBandOutline(normalized);
    if (normalized.empty()) {
        drawBandLine(normalized);
    }
    glDisable(GL_COLOR_LOGIC_OP);
    glPopAttrib();
    pixels.end();
}

void OruSceneRender::drawFocus(bool stippled)
{
    glMatrixMode(GL_PROJECTION);
    glPushMatrix();
    glLoadIdentity();
    const OruOglViewport viewport = glGetViewport();
    gluOrtho2D(viewport);
    glMatrixMode(GL_MODELVIEW);
    glPushMatrix();
    glLoadIdentity();
    glPushAttrib(GL_ENABLE_BIT | GL_CURRENT_BIT);
    glDisable(GL_LIGHTING);
    glDisable(GL_DEPTH_TEST);
    if (stippled) {
        glEnable(GL_LINE_STIPPLE);
    } else {
        glDisable(GL_LINE_STIPPLE);
    }
    // The two patterns complement each other: stippled, white and gray alternate; solid, gray covers white.
    glColor(QColor(Qt::white));
    glLineStipple(1, 0xAAAA);
    drawFrameStrip(viewport);
    glColor(QColor(Qt::darkGray));
    glLineStipple(1, 0x5555);
    drawFrameStrip(viewport);
    glPopAttrib();
    glPopMatrix();
    glMatrixMode(GL_PROJECTION);
    glPopMatrix();
    glMatrixMode(GL_MODELVIEW);
}

void OruSceneRender::drawPerformance(const OruOglViewport& viewport, const OruProcessTimes& start)
{
    const QString performance = start.performanceText();
    boxedText.clear();
    boxedText.setColor(QColor(Qt::lightGray), QColor(Qt::darkGray));
    text.setColor(QColor(Qt::white));
    boxedText.setAlignment(Qt::AlignLeft | Qt::AlignTop);
    boxedText.draw(QPoint(viewport.width, 0), performance);
}
