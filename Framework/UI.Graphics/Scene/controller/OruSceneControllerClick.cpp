// The click of OruSceneController: labels of the triad, objects, and the empty scene.

#include "Scene/controller/OruSceneController.h"

#include "Scene/controller/IOruSceneController.h"
#include "Scene/controller/internal/OruSceneDispatch.h"
#include "Scene/core/OruScene.h"
#include "Scene/core/OruSceneEventContext.h"
#include "Scene/core/internal/OruSceneTrace.h"
#include "Scene/navigation/OruPropertyAdaptor.h"
#include "Scene/navigation/OruSceneZpr.h"
#include "Scene/render/OruSceneRender.h"
#include "contracts/vis/IOruVisEventHandler.h"
#include "contracts/vis/IOruVisPropertyEdit.h"
#include "contracts/vis/OruVisHitLabelQualifier.h"
#include "contracts/vis/OruVisHitProperty.h"
#include "contracts/vis/OruVisHitRecord.h"
#include "contracts/vis/OruVisTriad.h"
#include "contracts/vis/OruVisualization.h"

using Kelvar::UI::Toolkit::ModifierFirst;

namespace {

/// A label of the triad and the view that a click on it asks for. The first label with the clicked text
/// counts.
struct LabelView
{
    OruPropertyAdaptor<QString> OruVisTriad::*label;
    OruSceneZpr::Position position;
};

const LabelView labelViews[] = {
    {&OruVisTriad::labelIsometric, OruSceneZpr::ViewIsometric},
    {&OruVisTriad::labelX, OruSceneZpr::ViewX},
    {&OruVisTriad::labelY, OruSceneZpr::ViewY},
    {&OruVisTriad::labelZ, OruSceneZpr::ViewZ},
    {&OruVisTriad::labelXReverse, OruSceneZpr::ViewXReverse},
    {&OruVisTriad::labelYReverse, OruSceneZpr::ViewYReverse},
    {&OruVisTriad::labelZReverse, OruSceneZpr::ViewZReverse},
};

bool isOnTriad(const OruSceneController::CurrentHitRecord& clicked)
{
    return clicked.hit.name != OruVisHitRecord::INVALID_NAME && clicked.visualization &&
           clicked.visualization->type() == OruVisTriad::typeString;
}

/// The view behind a hit on the triad, or null where the hit is no label of it.
const LabelView* findLabelView(const OruSceneController::CurrentHitRecord& clicked)
{
    const OruVisHitProperty property = clicked.visualization->hitProperties.value(clicked.hit.name);
    const auto* const triad = dynamic_cast<const OruVisTriad*>(property.object);
    const auto* const qualifier = dynamic_cast<const OruVisHitLabelQualifier*>(property.qualifier);
    if (!triad || !qualifier) {
        return nullptr;
    }
    for (const LabelView& row : labelViews) {
        if ((triad->*row.label).value() == qualifier->label) {
            return &row;
        }
    }
    return nullptr;
}

bool turnToLabel(OruScene& scene, OruSceneEventContext& ctx,
                 const OruSceneController::CurrentHitRecord& clicked)
{
    const LabelView* const row = findLabelView(clicked);
    if (!row || !scene.zpr.zoomTo(ctx, row->position, ctx.modelView)) {
        return false;
    }
    scene.setViewpoint(ctx.viewpointName, ctx.modelView);
    return true;
}

} // namespace

bool OruSceneController::OnMouseClick(OruScene& scene, OruSceneEventContext& ctx)
{
    ORU_SCENE_TRACE();
    const bool withModifier = ctx.mouse.curmodifier() == ModifierFirst;
    CurrentHitRecord clicked;
    if (!hitTop(scene.render, ctx, clicked) || !clicked.hasHandler()) {
        return clickEmpty(withModifier);
    }
    if (isOnTriad(clicked)) {
        return turnToLabel(scene, ctx, clicked);
    }
    return clickObject(scene.render, clicked, withModifier);
}

bool OruSceneController::clickEmpty(bool withModifier)
{
    return oru::tellHost(hostController, [&](IOruSceneController& host) {
        return host.OnClick(OruVisHitRecord(), nullptr, withModifier);
    });
}

bool OruSceneController::clickObject(OruSceneRender& render, const CurrentHitRecord& clicked,
                                     bool withModifier)
{
    return oru::tellBoth(
        clicked, hostController,
        [&](IOruVisEventHandler& handler) {
            const boost::shared_ptr<IOruVisPropertyEdit> editor = render.editor();
            return handler.OnClick(clicked.hit, editor.get());
        },
        [&](IOruSceneController& host, const OruVisualization* object) {
            return host.OnClick(clicked.hit, object, withModifier);
        });
}
