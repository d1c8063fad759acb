#pragma once

#include "contracts/vis/OruVisHitName.h"
#include "contracts/vis/OruVisualization.h"
#include "contracts/vis/kelvar_vis_api.h"

#include <QRect>
#include <QSize>

#include <cstdint>
#include <memory>

struct OruOglTexture;

/// An image that lies flat over the scene at a side or corner of the viewport, such as a logo.
///
/// Its height is set, its width follows from the image. It shrinks with a viewport that has no room for it
/// and its margins, and is not shown below its minimum height. It is picked by its rectangle.
class KELVAR_VIS_API OruVisImage : public OruVisualization
{
public:
    static const QString typeString;

    /// What the lengths of an image are measured in.
    enum Unit
    {
        Pixels = 0,
        PercentOfViewportHeight = 1
    };

    explicit OruVisImage(OruModifiedGroup& modifiedGroup);

    /// drawOrder(); key "order".
    OruPropertyAdaptor<int> order;

    /// Where in the viewport: Qt::AlignmentFlag values; without a flag for an axis it is centered on that
    /// axis. Key "alignment".
    OruPropertyAdaptor<int> alignment;

    /// Unit of the margins and of the height; key "unit".
    OruPropertyAdaptor<int> unit;

    /// Distance kept from each side of the viewport; keys "marginLeft", "marginRight", "marginTop",
    /// "marginBottom".
    OruPropertyAdaptor<float> marginLeft;
    OruPropertyAdaptor<float> marginRight;
    OruPropertyAdaptor<float> marginTop;
    OruPropertyAdaptor<float> marginBottom;

    /// Height as shown; key "height".
    OruPropertyAdaptor<float> height;

    /// Pixels below which the image is not shown at all; key "minimumHeight".
    OruPropertyAdaptor<float> minimumHeight;

    /// The image file, found through OruResource::imageFile; key "file". One that is missing or no image
    /// shows nothing, and is looked for again when the value is written again, be it the same.
    OruPropertyAdaptor<QString> file;

    /// Shows the image's pixels as they are instead of smoothing them; key "pixelated".
    OruPropertyAdaptor<bool> pixelated;

    /// The color that is transparent if useTransparentColor is true; keys "transparentColor",
    /// "useTransparentColor".
    OruPropertyAdaptor<QColor> transparentColor;
    OruPropertyAdaptor<bool> useTransparentColor;

    /// Who hears of events on the image; nobody at first. The handler is not owned.
    void setEventHandler(const boost::weak_ptr<IOruVisEventHandler>& handler) { handler_ = handler; }

    /// The rectangle of an image of `imageSize` pixels in a viewport of `viewportSize`: pixels of the 2D
    /// passes, top() the lowest row since y grows upwards. Null when it is not shown.
    QRect placeIn(const QSize& viewportSize, const QSize& imageSize) const;

    void draw2d(const DrawContext& context) override;
    OruVisHitRecordList select2d(const SelectContext& context) override;
    int drawOrder() const override;

private:
    const QString& fileFor(OruOglCache& cache);

    const OruPropertiesString::Slot* fileSlot_;
    std::uint64_t fileWrites_ = 0;
    /// Of the last draw; held, so that the cache keeps it.
    std::shared_ptr<const OruOglTexture> texture_;
    OruVisHitName hitName_;
    boost::weak_ptr<IOruVisEventHandler> handler_;
};
