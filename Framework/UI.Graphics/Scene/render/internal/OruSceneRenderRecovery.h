#pragma once

#include "Scene/render/OruSceneRender.h"

/// Puts a render back in order when an exception has left one of its passes: attribute entries that the pass
/// has pushed come off, and the text leaves the select mode. When all went well it finds nothing to do.
class OruSceneRenderRecovery
{
public:
    explicit OruSceneRenderRecovery(OruSceneRender& render)
        : render_(render)
        , entries_(render.openEntries)
    {}
    ~OruSceneRenderRecovery() { render_.recover(entries_); }
    OruSceneRenderRecovery(const OruSceneRenderRecovery&) = delete;
    OruSceneRenderRecovery& operator=(const OruSceneRenderRecovery&) = delete;

private:
    OruSceneRender& render_;
    unsigned int entries_;
};
