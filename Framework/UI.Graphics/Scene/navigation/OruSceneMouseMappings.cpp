#include "Scene/navigation/OruSceneMouseMappings.h"

#include "contracts/core/OruModifiedGroup.h"
#include "contracts/core/OruPropertyKind.h"

using Kelvar::UI::Toolkit::ModifierFirst;
using Kelvar::UI::Toolkit::ModifierNone;
using Kelvar::UI::Toolkit::ModifierSecond;

namespace {

constexpr OruPropertyKind::Choice buttonWords[] = {
    {"0", "none"}, {"1", "pick"}, {"2", "context"}, {"3", "view"}};
constexpr OruPropertyKind buttons = OruPropertyKind::of<int>().oneOf(buttonWords);

/// Hosts may have more modifiers.
constexpr OruPropertyKind::Choice modifierWords[] = {
    {"0", "none"}, {"1", "first"}, {"2", "second"}, {"3", "both"}};
constexpr OruPropertyKind modifiers = OruPropertyKind::of<int>().naming(modifierWords);

} // namespace

const QString OruSceneMouseMappings::typeString = QLatin1String("scene.mouse_mappings");

OruSceneMouseMappings::OruSceneMouseMappings(OruModifiedGroup& modifiedGroup)
    : OruProperties(modifiedGroup)
    , rotateBut(*this, QLatin1String("rotateBut"), OruMouse::ButtonView, QString())
    , rotateMod(*this, QLatin1String("rotateMod"), ModifierNone, QString())
    , panBut(*this, QLatin1String("panBut"), OruMouse::ButtonView, QString())
    , panMod(*this, QLatin1String("panMod"), ModifierFirst, QString())
    , zoomBut(*this, QLatin1String("zoomBut"), OruMouse::ButtonView, QString())
    , zoomMod(*this, QLatin1String("zoomMod"), ModifierSecond, QString())
    , boxZoomBut(*this, QLatin1String("boxZoomBut"), OruMouse::ButtonContext, QString())
    , boxZoomMod(*this, QLatin1String("boxZoomMod"), ModifierNone, QString())
{
    setType(typeString);
    for (Button* button : {&rotateBut, &panBut, &zoomBut, &boxZoomBut}) {
        button->setKind(buttons);
    }
    for (Modifier* modifier : {&rotateMod, &panMod, &zoomMod, &boxZoomMod}) {
        modifier->setKind(modifiers);
    }
}

OruSceneMouseMappings::OruSceneMouseMappings(const OruSceneMouseMappings& other) = default;

OruSceneMouseMappings& OruSceneMouseMappings::operator=(const OruSceneMouseMappings& other) = default;

OruSceneMouseMappings::~OruSceneMouseMappings() = default;
