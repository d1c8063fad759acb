#include "Scene/core/OruScene.h"

#include "Scene/core/OruSceneEventContext.h"
#include "Scene/core/OruSceneRenderContext.h"
#include "Scene/core/internal/OruSceneEditGuard.h"
#include "Scene/core/internal/OruSceneFrameState.h"
#include "Scene/core/internal/OruSceneTrace.h"
#include "contracts/core/OruModifiedGroup.h"
#include "contracts/ogl/OruOglFunctions.h"
#include "contracts/ogl/OruOglGl.h"

namespace {

/// Lowers the flag of a running draw when its scope is left.
struct DrawingMark
{
    explicit DrawingMark(bool& running)
        : flag(running)
    {}
    ~DrawingMark() { flag = false; }
    DrawingMark(const DrawingMark&) = delete;
    DrawingMark& operator=(const DrawingMark&) = delete;

    bool& flag;
};

} // namespace

const QString OruScene::typeString = QLatin1String("scene");

/// The group is handed over at once, so it goes with the last node, also when a later member throws.
OruScene::OruScene(const QString& fonts, const QString& images, const QString& user)
    : OruProperties((new OruModifiedGroup)->handOver())
    , zpr(group)
    , render(group, fonts, images, user)
    , mappings(group)
    , mode_(3)
    , drawing(false)
    , lastViewport()
    , controller_()
    , editDepth(0)
{
    ORU_SCENE_TRACE();
    rename(QLatin1String("scene.1"));
    setType(typeString);
    zpr.rename(QLatin1String("zpr"));
    render.rename(QLatin1String("render"));
    mappings.rename(QLatin1String("mouse mappings"));
    insert(&zpr, true);
    insert(&render, true);
    insert(&mappings, true);
}

OruScene::~OruScene()
{
    ORU_SCENE_TRACE();
}

void OruScene::drawGl(OruSceneEventContext& ctx)
{
    ORU_SCENE_TRACE();
    if (drawing) {
        return;
    }
    drawing = true;
    // The outer mark is for a session that fails to open; the inner one ends the draw ahead of the session,
    // so that an editor can draw again when it hears the end.
    const DrawingMark untilLeft(drawing);
    const OruSceneEditGuard guard(render, OruSceneEditGuard::OpensAndCloses, editDepth);
    const DrawingMark untilDrawn(drawing);
    drawFrame(ctx);
}

void OruScene::drawFrame(OruSceneEventContext& ctx)
{
    const OruSceneFrameState stacks(render);
    OruSceneRenderContext rc(ctx);

    // The visualizations catch up before they hear of a new size.
    render.update(rc);
    if (lastViewport != rc.viewport) {
        render.resize(rc);
        lastViewport = rc.viewport;
    }

    ctx.bounds = render.visualizations.bounds();
    ctx.center = ctx.bounds.center();
    if (!ctx.viewpointName.isEmpty()) {
        ctx.modelView = viewpoint(ctx.viewpointName);
        rc.modelView = ctx.modelView;
    }
    rc.projection = glGetOrtho(rc.viewport, ctx.bounds, rc.modelView);
    setViewing(rc);
    if (!ctx.noDraw) {
        render.clear();
        render.draw(rc);
    }
}

void OruScene::setViewing(const OruSceneRenderContext& rc)
{
    glViewport(rc.viewport);
    glMatrixMode(GL_MODELVIEW);
    glLoadMatrix(rc.modelView);
    glMatrixMode(GL_PROJECTION);
    glLoadMatrix(rc.projection);
    glMatrixMode(GL_MODELVIEW);
}
