#pragma once

#include "Scene/controller/OruSceneController.h"
#include "Scene/core/OruSceneEventHandler.h"
#include "Scene/kelvar_scene_api.h"
#include "Scene/navigation/OruSceneMouseMappings.h"
#include "Scene/navigation/OruSceneZpr.h"
#include "Scene/render/OruSceneRender.h"
#include "contracts/core/OruProperties.h"
#include "contracts/math/Matrix.h"
#include "contracts/ogl/OruOglViewport.h"

#include <QImage>
#include <QString>

#include <functional>

class IOruVisPropertyEdit;
class OruSceneCaptureTarget;
class OruSceneEventContext;
class OruSceneRenderContext;

/// One view of a host application: camera, rendering, picking, and the root of the property tree that holds
/// every setting and the view itself.
///
/// The host makes one for each view, feeds it paint requests and input together with its event context, and
/// repaints when an operation answers true. Every call runs on the thread of the host's OpenGL context with
/// that context current, the destructor included. The scene has no window, no thread and no timer of its own;
/// scenes in different threads, each with a context of its own, share nothing that one could notice.
///
/// Frames: world coordinates are those of the visualizations. The view matrix maps them to a view space in
/// which the view spans 2 units in height about the origin, x to the right, y up, the eye looking along -z.
/// Pixels are OpenGL window coordinates. Angles are in degrees. Matrices work on row vectors: A * B applies A
/// first.
///
/// The view matrix lives in the tree, as the matrix of a named viewpoint among the visualizations. What an
/// event context holds is a working copy: a draw reads the stored one into it, and navigation writes it back
/// through the property editor.
///
/// An exception from a visualization, a handler or an editor reaches the host. The edit session is then
/// closed (a throwing mousePress leaves its session to the release) and the OpenGL stacks are as they were,
/// so the next call simply works.
class KELVAR_SCENE_API OruScene : public OruProperties, public OruSceneEventHandler
{
public:
    /// The three strings are the search places of OruResource: fonts, images, and the user's own files.
    OruScene(const QString& fonts, const QString& images, const QString& user);

    /// Clears the frame once more, so the OpenGL context is still current here.
    ~OruScene() override;

    OruScene(const OruScene&) = delete;
    OruScene& operator=(const OruScene&) = delete;

    /// Draws one frame into the current draw buffer and finishes it; presenting it is the host's business.
    /// Sets `ctx.bounds`, `ctx.center` and, unless `ctx.viewpointName` is empty, `ctx.modelView`. With
    /// `ctx.noDraw` the visualizations still catch up with what changed and with the viewport's size, but
    /// nothing is cleared or painted. A call from within a draw returns at once and changes nothing.
    void drawGl(OruSceneEventContext& ctx);

    /// Draws the view off screen into an image of `ctx.viewport`'s width and height, in pixels, and then once
    /// more to the screen at its former size. `ctx` stays unchanged. The image comes out upright, in RGB.
    /// False: the capture could not start, and `image` is as it was: OpenGL has no framebuffer objects, or
    /// they don't take the size. The error stream tells which, unless the extension is just not there. An
    /// exception from a draw, or std::bad_alloc for an image that memory does not take, goes on to the
    /// caller; the scene stands at the size of the image then, until the next draw.
    bool drawGl(const OruSceneEventContext& ctx, QImage& image);

    /// Loads viewport and matrices into OpenGL and leaves the matrix mode at the model view.
    static void setViewing(const OruSceneRenderContext& rc);

    /// The matrix of the viewpoint of that name, else of the first viewpoint, else the identity. Valid until
    /// the next read; copy it.
    const Kelvar::Math::Matrix& viewpoint(const QString& name) const;

    /// Writes `view` to the viewpoint of that name, through the property editor and in an edit session. True:
    /// the matrix differed and was handed to the editor. False: it was equal, or there is no such viewpoint,
    /// or none any more once the session had begun; nothing changed.
    bool setViewpoint(const QString& name, const Kelvar::Math::Matrix& view);

    /// Runs changes of the host's own in an edit session, so that they are one step, or part of the one that
    /// a press has opened. `changes` gets the editor in force, which lives as long as the call. What
    /// `changes` or the editor throws passes through, and the session is closed.
    void inEditSession(const std::function<void(IOruVisPropertyEdit& editor)>& changes);

    /// Hit tracking; the host's own controller goes in by its `reset`.
    OruSceneController& controller() { return controller_; }

    /// What the pick button does without a modifier: 1 zooms, 2 pans, 3 rotates (the start value), 6 draws a
    /// zoom box. Any other value is legal and means no gesture.
    int mode() const { return mode_; }
    void setMode(int mode) { mode_ = mode; }

    bool focusIn(OruSceneEventContext& ctx) override;
    bool focusOut(OruSceneEventContext& ctx) override;
    bool mouseEnter(OruSceneEventContext& ctx) override;
    bool mouseLeave(OruSceneEventContext& ctx) override;
    bool mouseMove(OruSceneEventContext& ctx) override;
    bool mouseWheel(OruSceneEventContext& ctx) override;
    bool mousePress(OruSceneEventContext& ctx) override;
    bool mouseRelease(OruSceneEventContext& ctx) override;
    bool mouseClick(OruSceneEventContext& ctx) override;
    bool mouseDoubleClick(OruSceneEventContext& ctx) override;
    bool keyPress(OruSceneEventContext& ctx) override;
    bool keyRelease(OruSceneEventContext& ctx) override;

    /// Navigation: operations and their tuning values. Child "zpr" of the tree.
    OruSceneZpr zpr;

    /// Renderer with the visualizations. Child "render" of the tree.
    OruSceneRender render;

    /// Button and modifier of each gesture. Child "mouse mappings" of the tree.
    OruSceneMouseMappings mappings;

private:
    bool zooming(const OruSceneEventContext& ctx) const;
    bool panning(const OruSceneEventContext& ctx) const;
    bool rotating(const OruSceneEventContext& ctx) const;
    bool boxzooming(const OruSceneEventContext& ctx) const;
    bool gesture(const OruSceneEventContext& ctx, const OruSceneMouseMappings::Gesture& mapped,
                 int mode) const;

    void drawFrame(OruSceneEventContext& ctx);
    const Kelvar::Math::Matrix* findViewpoint(const QString& name) const;
    bool dropTooltip(OruSceneEventContext& ctx);
    bool runGesture(OruSceneEventContext& ctx, bool hovers);
    void stretchBand(OruSceneEventContext& ctx) const;
    void capture(const OruSceneEventContext& ctx, OruSceneCaptureTarget& target, QImage& image);
    void redrawScreen(const OruSceneEventContext& ctx, const OruOglViewport& viewport);

    static const QString typeString;

    int mode_;
    bool drawing;
    OruOglViewport lastViewport;
    OruSceneController controller_;
    unsigned int editDepth;
};
