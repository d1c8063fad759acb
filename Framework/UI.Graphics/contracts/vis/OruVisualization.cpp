#include "contracts/vis/OruVisualization.h"

#include "contracts/core/OruModifiedGroup.h"
#include "contracts/core/OruResource.h"
#include "contracts/ogl/OruOglCache.h"
#include "contracts/ogl/OruOglGeometry.h"
#include "contracts/ogl/OruOglText.h"
#include "contracts/vis/IOruVisPropertyEdit.h"
#include "contracts/vis/internal/OruVisDeferred.h"

#include <utility>

OruVisualization::DrawContext::DrawContext(OruOglGeometry& geometryStore, OruOglCache& glCache,
                                           const OruResource& resources, const OruOglViewport& pixels,
                                           OruOglText& textRenderer,
                                           boost::shared_ptr<IOruVisPropertyEdit> propertyEditor,
                                           const Kelvar::Math::NumberFormat& numberFormat)
    : geometry(geometryStore)
    , cache(glCache)
    , resource(resources)
    , text(textRenderer)
    , viewport(pixels)
    , editor(std::move(propertyEditor))
    , format(numberFormat)
{}

OruVisualization::DrawContext::~DrawContext() = default;

bool OruVisualization::DrawContext::defer(OruVisualization& object) const
{
    const std::shared_ptr<OruVisDeferred> deferred = deferred_.lock();
    return deferred && deferred->add(object, *this);
}

OruVisualization::SelectContext::SelectContext(OruOglGeometry& geometryStore, OruOglCache& glCache,
                                               const OruResource& resources, const OruOglViewport& pixels,
                                               OruOglText& textRenderer,
                                               const Kelvar::Math::NumberFormat& numberFormat)
    : geometry(geometryStore)
    , cache(glCache)
    , resource(resources)
    , text(textRenderer)
    , viewport(pixels)
    , format(numberFormat)
{}

OruVisualization::SelectContext::~SelectContext() = default;

OruVisualization::OruVisualization(OruModifiedGroup& modifiedGroup, const QString& typeText)
    : OruProperties(modifiedGroup)
    , visible(*this, QStringLiteral("visible"), true, QString())
    , watcher_(*this)
{
    setType(typeText);
    OruProperties::rename(typeText);
}

OruVisualization::~OruVisualization() = default;

void OruVisualization::reservedFirst() {}

void OruVisualization::reservedSecond() {}

void OruVisualization::update(const DrawContext& /*context*/) {}

void OruVisualization::resize(const DrawContext& /*context*/) {}

void OruVisualization::draw3d(const DrawContext& /*context*/) {}

void OruVisualization::draw2d(const DrawContext& /*context*/) {}

OruVisHitRecordList OruVisualization::select3d(const SelectContext& /*context*/)
{
    return OruVisHitRecordList();
}

OruVisHitRecordList OruVisualization::select2d(const SelectContext& /*context*/)
{
    return OruVisHitRecordList();
}

Kelvar::Math::BoundingBox OruVisualization::bounds() const
{
    return Kelvar::Math::BoundingBox();
}

const OruModifiedWatcher& OruVisualization::watcher() const
{
    return watcher_;
}

int OruVisualization::drawOrder() const
{
    return 0;
}

void OruVisualization::drawTransparent3d(const DrawContext& /*context*/) {}

double OruVisualization::rim() const
{
    return 0.0;
}

OruVisualization::Reach OruVisualization::reach() const
{
    return reach_;
}

void OruVisualization::setReach(Reach reach)
{
    if (reach_ != reach) {
        reach_ = reach;
        touch();
    }
}

void OruVisualization::boundsChanged()
{
    touch();
}
