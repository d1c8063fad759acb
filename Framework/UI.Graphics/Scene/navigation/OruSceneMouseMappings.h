#pragma once

#include "Scene/kelvar_scene_api.h"
#include "Scene/navigation/OruPropertyAdaptor.h"
#include "contracts/core/OruMouse.h"
#include "contracts/core/OruProperties.h"

#include <QString>

/// Which mouse button and which keyboard modifier start each navigation gesture.
///
/// A plain property node, read at each event, so an edit takes effect at the next one. Numbers without a
/// button or modifier behind them start nothing; 0 is the button for that.
class KELVAR_SCENE_API OruSceneMouseMappings : public OruProperties
{
public:
    using Button = OruPropertyAdaptor<OruMouse::Button>;
    using Modifier = OruPropertyAdaptor<Kelvar::UI::Toolkit::KeyModifier>;

    /// The two adaptors of one gesture.
    struct Gesture
    {
        const Button& button;
        const Modifier& modifier;
    };

    static const QString typeString;

    explicit OruSceneMouseMappings(OruModifiedGroup& group);

    /// Copies the values; a move is a copy.
    OruSceneMouseMappings(const OruSceneMouseMappings& other);

    /// Writes all eight values of `other` into this node's own store; a move is the same.
    OruSceneMouseMappings& operator=(const OruSceneMouseMappings& other);

    ~OruSceneMouseMappings() override;

    Button rotateBut;
    Modifier rotateMod;
    Button panBut;
    Modifier panMod;
    Button zoomBut;
    Modifier zoomMod;
    Button boxZoomBut;
    Modifier boxZoomMod;
};
