// The passes of OruSceneRender: update, resize, draw and select. The order of the OpenGL calls is part of the
// contract with the visualizations, which rely on the state that they find.

#include "Scene/core/OruSceneRenderContext.h"
#include "Scene/core/OruSceneSelectContext.h"
#include "Scene/core/internal/OruSceneTrace.h"
#include "Scene/render/OruProcessTimes.h"
#include "Scene/render/OruSceneRender.h"
#include "contracts/ogl/OruOglFunctions.h"
#include "contracts/ogl/OruOglGl.h"
#include "contracts/ogl/OruOglViewport.h"
#include "contracts/vis/IOruVisPropertyEdit.h"
#include "contracts/vis/OruVisHitRecordList.h"
#include "contracts/vis/OruVisualization.h"

namespace {

bool hasArea(const OruOglViewport& viewport)
{
    return viewport.width >= 1 && viewport.height >= 1;
}

/// A rubber band is drawn as soon as one side reaches this many pixels.
const int smallestDrawnBand = 6;

bool bandIsVisible(const OruOglViewport& band)
{
    const OruOglViewport size = OruOglViewport::normalized(band);
    return size.height >= smallestDrawnBand || size.width >= smallestDrawnBand;
}

/// Pixels become the units of the model view stack, over an identity projection. Visualizations read the
/// whole mapping from one matrix that way.
template <typename Context>
void loadPixelMatrices(Context& context)
{
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    context.projection.identity();
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    gluOrtho2D(context.viewport);
    context.modelView = glGetModelViewMatrix();
}

} // namespace

void OruSceneRender::enterPass()
{
    glPushAttrib(OruOglAllAttribBits);
    ++openEntries;
}

void OruSceneRender::leavePass()
{
    glPopAttrib();
    --openEntries;
}

void OruSceneRender::recover(unsigned int entries)
{
    if (openEntries == entries) {
        return;
    }
    while (openEntries > entries) {
        leavePass();
    }
    text.setSelectMode(false);
}

OruVisualization::DrawContext OruSceneRender::drawContext(const OruOglViewport& viewport)
{
    const boost::shared_ptr<IOruVisPropertyEdit> editorInForce = editor();
    return OruVisualization::DrawContext(*geometry, *cache, resource, viewport, text, editorInForce,
                                         numberFormat());
}

OruVisualization::DrawContext OruSceneRender::drawContext(const OruSceneRenderContext& rc)
{
    OruVisualization::DrawContext dc = drawContext(rc.viewport);
    dc.modelView = rc.modelView;
    dc.projection = rc.projection;
    return dc;
}

void OruSceneRender::update(const OruSceneRenderContext& rc)
{
    ORU_SCENE_TRACE();
    if (!hasArea(rc.viewport)) {
        return;
    }
    const OruVisualization::DrawContext dc = drawContext(rc);
    enterPass();
    if (visualizations.watcher().modified()) {
        visualizations.update(dc);
        visualizations.resize(dc);
        visualizations.watcher().reset();
    }
    leavePass();
}

void OruSceneRender::resize(const OruSceneRenderContext& rc)
{
    ORU_SCENE_TRACE();
    if (!hasArea(rc.viewport)) {
        return;
    }
    const OruVisualization::DrawContext dc = drawContext(rc.viewport);
    enterPass();
    visualizations.resize(dc);
    leavePass();
}

void OruSceneRender::draw(const OruSceneRenderContext& rc)
{
    ORU_SCENE_TRACE();
    if (!hasArea(rc.viewport)) {
        return;
    }
    // The snapshot comes first, so that the frame rate shown counts the passes and the overlays.
    const OruProcessTimes start;
    const OruVisualization::DrawContext dc = drawContext(rc);
    draw3dPass(dc);
    draw2dPass(dc);
    drawOverlays(rc, start);
    glFinish();
}

void OruSceneRender::draw3dPass(const OruVisualization::DrawContext& dc)
{
    enterPass();
    glEnable(GL_DEPTH_TEST);
    glDepthFunc(GL_LESS);
    // A zoomed view scales the normals; without this the light would change with the zoom.
    glEnable(GL_NORMALIZE);
    glEnable(GL_CULL_FACE);
    // The tracked parameter is chosen before tracking starts, or the current color would overwrite another.
    glColorMaterial(GL_FRONT_AND_BACK, GL_DIFFUSE);
    glEnable(GL_COLOR_MATERIAL);
    glShadeModel(GL_SMOOTH);
    glLightModeli(GL_LIGHT_MODEL_TWO_SIDE, 1);
    // Surfaces step back a little, so that edges and marks drawn on them show.
    glPolygonOffset(1.0f, 1.0f);
    glEnable(GL_POLYGON_OFFSET_FILL);
    lights.setLighting();
    visualizations.draw3d(dc);
    leavePass();
}

void OruSceneRender::draw2dPass(const OruVisualization::DrawContext& dc)
{
    enterPass();
    {
        OruVisualization::DrawContext dc2(dc);
        glDisable(GL_DEPTH_TEST);
        glDisable(GL_NORMALIZE);
        glDisable(GL_CULL_FACE);
        glDisable(GL_LIGHTING);
        glDisable(GL_POLYGON_OFFSET_FILL);
        glEnable(GL_COLOR_MATERIAL);
        glShadeModel(GL_SMOOTH);
        loadPixelMatrices(dc2);
        visualizations.draw2d(dc2);
    }
    leavePass();
}

/// The overlays run after the passes, outside their attribute entries: in the host's own state, over the 2D
/// matrices that the 2D pass has left.
void OruSceneRender::drawOverlays(const OruSceneRenderContext& rc, const OruProcessTimes& start)
{
    if (!rc.tooltip.isEmpty()) {
        drawTooltip(boxedText, rc.viewport, rc.cursor, rc.tooltip);
    }
    if (bandIsVisible(rc.boxZoom)) {
        drawBox(rc.boxZoom, rc.viewport);
    }
    drawFocus(!rc.focused);
    if (textInfo.value()) {
        drawPerformance(rc.viewport, start);
    }
}

OruVisHitRecordList OruSceneRender::select(const OruSceneSelectContext& sc)
{
    ORU_SCENE_TRACE();
    OruVisHitRecordList hits;
    if (!hasArea(sc.viewport)) {
        return hits;
    }
    OruVisualization::SelectContext sel(*geometry, *cache, resource, sc.viewport, text, numberFormat());
    sel.modelView = sc.modelView;
    sel.projection = sc.projection;
    sel.pickPoint = sc.pickPoint;
    sel.pickSize = sc.pickSize;

    // White is the name of no object. It is set ahead of the attribute entry and stays; the next frame's
    // clear sets its own color.
    text.setSelectMode(true);
    glClearColor(QColor(Qt::white));
    glClearStencil(0);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    enterPass();
    select3dPass(sel, hits);
    select2dPass(sel, hits);
    leavePass();
    text.setSelectMode(false);
    glFinish();
    return hits;
}

void OruSceneRender::select3dPass(const OruVisualization::SelectContext& sel, OruVisHitRecordList& hits)
{
    glEnable(GL_DEPTH_TEST);
    glDisable(GL_NORMALIZE);
    glDisable(GL_CULL_FACE);
    glDisable(GL_COLOR_MATERIAL);
    glShadeModel(GL_FLAT);
    glDisable(GL_LIGHTING);
    glDisable(GL_POLYGON_OFFSET_FILL);
    hits.insert(visualizations.select3d(sel));
}

void OruSceneRender::select2dPass(OruVisualization::SelectContext& sel, OruVisHitRecordList& hits)
{
    glDisable(GL_DEPTH_TEST);
    loadPixelMatrices(sel);
    hits.insert(visualizations.select2d(sel));
}
