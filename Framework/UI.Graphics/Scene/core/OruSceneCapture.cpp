// The capture of a view into an image, off screen.

// GLEW declares all of OpenGL and must come ahead of every other header that does.
#include <GL/glew.h>

#include "Scene/core/OruScene.h"
#include "Scene/core/OruSceneEventContext.h"
#include "Scene/core/internal/OruSceneCaptureTarget.h"
#include "Scene/core/internal/OruSceneEditGuard.h"
#include "Scene/core/internal/OruSceneTrace.h"
#include "contracts/debug/dbgostream.h"
#include "contracts/ogl/OruOglFunctions.h"
#include "contracts/ogl/OruOglGl.h"
#include "contracts/ogl/OruOglViewport.h"

#include <mutex>
#include <new>
#include <string>

namespace {

const char* const captureSignature =
    " - bool __cdecl OruScene::drawGl(const class OruSceneEventContext &,class QImage &)";

/// GLEW keeps its functions for the whole process, and each capture brings those of its context in: scenes in
/// different threads take turns. One out of another in the same thread goes on.
std::recursive_mutex captureTurns;

void writeErrorLine(const std::string& text)
{
    const kelvardebug::dbgostream stream = oru::debug_logger::debuglogger().derr(std::string());
    if (stream.active()) {
        stream.buffer() << text;
        stream << std::endl;
    }
}

/// A function of the framebuffer extension, as GLEW has found it; null if it has not.
struct EntryPoint
{
    const char* name;
    const void* address;
    bool called;
};

EntryPoint entryPoint(const char* name, const void* address, bool called)
{
    return {name, address, called};
}

/// Reports every entry point of the extension that is missing. False: the capture itself needs one of them.
bool entryPointsPresent()
{
#define ENTRY_POINT(function, called) entryPoint(#function, reinterpret_cast<const void*>(function), called)
    const EntryPoint entryPoints[] = {
        ENTRY_POINT(glBindFramebufferEXT, true),
        ENTRY_POINT(glBindRenderbufferEXT, true),
        ENTRY_POINT(glCheckFramebufferStatusEXT, true),
        ENTRY_POINT(glDeleteFramebuffersEXT, true),
        ENTRY_POINT(glDeleteRenderbuffersEXT, true),
        ENTRY_POINT(glFramebufferRenderbufferEXT, true),
        ENTRY_POINT(glFramebufferTexture1DEXT, false),
        ENTRY_POINT(glFramebufferTexture2DEXT, false),
        ENTRY_POINT(glFramebufferTexture3DEXT, false),
        ENTRY_POINT(glGenerateMipmapEXT, false),
        ENTRY_POINT(glGenFramebuffersEXT, true),
        ENTRY_POINT(glGenRenderbuffersEXT, true),
        ENTRY_POINT(glGetFramebufferAttachmentParameterivEXT, false),
        ENTRY_POINT(glGetRenderbufferParameterivEXT, false),
        ENTRY_POINT(glIsFramebufferEXT, false),
        ENTRY_POINT(glIsRenderbufferEXT, false),
        ENTRY_POINT(glRenderbufferStorageEXT, true),
    };
#undef ENTRY_POINT
    bool usable = true;
    for (const EntryPoint& entry : entryPoints) {
        if (!entry.address) {
            const std::string message = '"' + std::string(entry.name) + '"' + captureSignature;
            oru::debug_logger::debuglogger().ensure(false, message);
            usable = usable && !entry.called;
        }
    }
    return usable;
}

/// Brings the extension's functions in; the pointers belong to the current context, so at every capture.
bool framebufferObjectsAvailable()
{
    const GLenum result = glewInit();
    if (result != GLEW_OK) {
        const char* const reason = reinterpret_cast<const char*>(glewGetErrorString(result));
        writeErrorLine("glewInit failed with: " + std::string(reason ? reason : ""));
        return false;
    }
    return __GLEW_EXT_framebuffer_object && entryPointsPresent();
}

/// An attribute entry for the length of a scope, or until it is taken off by hand.
class AttributeEntry
{
public:
    AttributeEntry() { glPushAttrib(OruOglAllAttribBits); }
    ~AttributeEntry() { pop(); }
    AttributeEntry(const AttributeEntry&) = delete;
    AttributeEntry& operator=(const AttributeEntry&) = delete;

    void pop()
    {
        if (pushed_) {
            pushed_ = false;
            glPopAttrib();
        }
    }

private:
    bool pushed_ = true;
};

/// Attributes that were saved for a framebuffer object are popped over the window's, which raises an error by
/// itself. The host must not find it. A context that got lost may answer an error for ever.
void takeErrorsOff()
{
    constexpr int mostErrors = 16;
    for (int i = 0; i < mostErrors && glGetError() != GL_NO_ERROR; ++i) {
    }
}

} // namespace

bool OruScene::drawGl(const OruSceneEventContext& ctx, QImage& image)
{
    ORU_SCENE_TRACE();
    // The draw into the framebuffer object overwrites it.
    const OruOglViewport savedViewport = lastViewport;
    const OruSceneEditGuard guard(render, OruSceneEditGuard::OpensAndCloses, editDepth);
    const std::lock_guard<std::recursive_mutex> turn(captureTurns);
    if (!framebufferObjectsAvailable()) {
        return false;
    }
    GLint drawBuffer = GL_BACK;
    glGetIntegerv(GL_DRAW_BUFFER, &drawBuffer);
    OruSceneCaptureTarget target(ctx.viewport.width, ctx.viewport.height);
    if (!target.complete()) {
        target.discard();
        takeErrorsOff();
        writeErrorLine("unable to correctly initialize pbuffer/rbuffer extensions!");
        return false;
    }
    try {
        capture(ctx, target, image);
        glDrawBuffer(static_cast<GLenum>(drawBuffer));
        redrawScreen(ctx, savedViewport);
    } catch (...) {
        writeErrorLine("failed to correctly render to the render buffer for a screen grab!");
        glDrawBuffer(static_cast<GLenum>(drawBuffer));
        takeErrorsOff();
        throw;
    }
    takeErrorsOff();
    return true;
}

/// Draws a copy of the context into the target and reads it back. Whatever happens, the target is gone and
/// the attributes are back when this is left.
void OruScene::capture(const OruSceneEventContext& ctx, OruSceneCaptureTarget& target, QImage& image)
{
    struct Release
    {
        OruSceneCaptureTarget& of;
        ~Release() { of.release(); }
    };
    AttributeEntry attributes;
    const Release release{target};
    glDrawBuffer(GL_COLOR_ATTACHMENT0_EXT);
    OruSceneEventContext copy(ctx);
    drawGl(copy);
    glReadBuffer(GL_COLOR_ATTACHMENT0_EXT);
    glReadPixels(0, 0, ctx.viewport.width, ctx.viewport.height, image);
    if (image.isNull()) {
        throw std::bad_alloc();
    }
    // Back to the window ahead of the attributes, whose draw buffer then does not fit: see takeErrorsOff.
    target.release();
    attributes.pop();
}

/// The scene and the window get their former size back, with the current view.
void OruScene::redrawScreen(const OruSceneEventContext& ctx, const OruOglViewport& viewport)
{
    AttributeEntry attributes;
    OruSceneEventContext copy(ctx);
    copy.viewport = viewport;
    drawGl(copy);
    attributes.pop();
}
