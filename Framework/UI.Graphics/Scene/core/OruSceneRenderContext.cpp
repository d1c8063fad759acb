#include "Scene/core/OruSceneRenderContext.h"

#include "Scene/core/OruSceneEventContext.h"

#include <utility>

OruSceneRenderContext::OruSceneRenderContext(const OruSceneEventContext& event)
    : viewport(event.viewport)
    , cursor(event.mouse.curpos())
    , center(event.center)
    , modelView(event.modelView)
    , projection(event.projection)
    , focused(true)
    , tooltip(event.tooltip)
    , boxZoom(event.boxZoom)
{}

OruSceneRenderContext& OruSceneRenderContext::operator=(const OruSceneEventContext& event)
{
    viewport = event.viewport;
    cursor = event.mouse.curpos();
    center = event.center;
    modelView = event.modelView;
    projection = event.projection;
    tooltip = event.tooltip;
    boxZoom = event.boxZoom;
    return *this;
}

OruSceneRenderContext::OruSceneRenderContext(const OruSceneRenderContext& other) = default;

/// The source keeps its tooltip.
OruSceneRenderContext::OruSceneRenderContext(OruSceneRenderContext&& other) noexcept
    // NOLINTNEXTLINE(performance-move-constructor-init)
    : OruSceneRenderContext(static_cast<const OruSceneRenderContext&>(other))
{}

OruSceneRenderContext& OruSceneRenderContext::operator=(const OruSceneRenderContext& other) = default;

OruSceneRenderContext& OruSceneRenderContext::operator=(OruSceneRenderContext&& other) noexcept = default;

OruSceneRenderContext::~OruSceneRenderContext() = default;
