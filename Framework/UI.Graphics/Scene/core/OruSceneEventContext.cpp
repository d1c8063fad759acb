#include "Scene/core/OruSceneEventContext.h"

OruSceneEventContext::OruSceneEventContext()
    : viewpointName(QLatin1String("viewpoint"))
    , upAxis(Kelvar::Math::Vector3::Z)
{}

/// Declared copies leave the class without moves: a context that was moved from would hand the next event
/// empty strings.
OruSceneEventContext::OruSceneEventContext(const OruSceneEventContext& other) = default;

OruSceneEventContext& OruSceneEventContext::operator=(const OruSceneEventContext& other) = default;

OruSceneEventContext::~OruSceneEventContext() = default;
