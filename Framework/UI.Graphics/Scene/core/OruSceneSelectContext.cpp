#include "Scene/core/OruSceneSelectContext.h"

OruSceneSelectContext::OruSceneSelectContext(const OruSceneEventContext& event)
    : OruSceneRenderContext(event)
{}

OruSceneSelectContext::~OruSceneSelectContext() = default;
