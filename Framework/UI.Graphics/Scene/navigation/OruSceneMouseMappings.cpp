#include "Scene/navigation/OruSceneMouseMappings.h"

using Kelvar::UI::Toolkit::ModifierFirst;
using Kelvar::UI::Toolkit::ModifierNone;
using Kelvar::UI::Toolkit::ModifierSecond;

const QString OruSceneMouseMappings::typeString = QStringLiteral("scene.mouse_mappings");

OruSceneMouseMappings::OruSceneMouseMappings(OruModifiedGroup& modifiedGroup)
    : OruProperties(modifiedGroup)
    , rotateBut(*this, QStringLiteral("rotateBut"), OruMouse::ButtonView, QString())
    , rotateMod(*this, QStringLiteral("rotateMod"), ModifierNone, QString())
    , panBut(*this, QStringLiteral("panBut"), OruMouse::ButtonView, QString())
    , panMod(*this, QStringLiteral("panMod"), ModifierFirst, QString())
    , zoomBut(*this, QStringLiteral("zoomBut"), OruMouse::ButtonView, QString())
    , zoomMod(*this, QStringLiteral("zoomMod"), ModifierSecond, QString())
    , boxZoomBut(*this, QStringLiteral("boxZoomBut"), OruMouse::ButtonContext, QString())
    , boxZoomMod(*this, QStringLiteral("boxZoomMod"), ModifierNone, QString())
{
    setType(typeString);
}

OruSceneMouseMappings::OruSceneMouseMappings(const OruSceneMouseMappings& other) = default;

OruSceneMouseMappings& OruSceneMouseMappings::operator=(const OruSceneMouseMappings& other) = default;

OruSceneMouseMappings::~OruSceneMouseMappings() = default;
