#include "Scene/core/internal/OruSceneEditGuard.h"

#include "Scene/render/OruSceneRender.h"
#include "contracts/vis/IOruVisPropertyEdit.h"

#include <exception>

namespace {

/// A copy keeps the editor alive while it runs, whatever it does to the render's own pointer.
boost::shared_ptr<IOruVisPropertyEdit> editorInForce(OruSceneRender& render)
{
    return render.editor();
}

} // namespace

OruSceneEditGuard::OruSceneEditGuard(OruSceneRender& render, int kind, unsigned int& depth)
    : render_(&render)
    , kind_(kind)
    , depth_(&depth)
    , exceptionsOnEntry_(std::uncaught_exceptions())
{
    if (kind_ & Opens) {
        open();
    }
}

OruSceneEditGuard::~OruSceneEditGuard() noexcept(false)
{
    if (!(kind_ & Closes)) {
        return;
    }
    try {
        close();
    } catch (...) {
        // A second exception during unwinding would end the process; the first one is the cause.
        if (std::uncaught_exceptions() <= exceptionsOnEntry_) {
            throw;
        }
    }
}

void OruSceneEditGuard::open()
{
    ++*depth_;
    if (*depth_ != 1) {
        return;
    }
    try {
        editorInForce(*render_)->beginEdit();
    } catch (...) {
        --*depth_;
        throw;
    }
}

void OruSceneEditGuard::close()
{
    // A release without its press finds no session and must not wrap the count round.
    if (*depth_ == 0) {
        return;
    }
    --*depth_;
    if (*depth_ == 0) {
        editorInForce(*render_)->endEdit();
    }
}
