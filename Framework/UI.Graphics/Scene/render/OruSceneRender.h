#pragma once

#include "Scene/kelvar_scene_api.h"
#include "Scene/navigation/OruPropertyAdaptor.h"
#include "contracts/core/OruProperties.h"
#include "contracts/core/OruResource.h"
#include "contracts/math/NumberFormat.h"
#include "contracts/ogl/OruOglBoxedText.h"
#include "contracts/ogl/OruOglCache.h"
#include "contracts/ogl/OruOglGeometry.h"
#include "contracts/ogl/OruOglText.h"
#include "contracts/ogl/OruOglViewport.h"
#include "contracts/vis/IOruVisPropertyEdit.h"
#include "contracts/vis/OruVisHitRecordList.h"
#include "contracts/vis/OruVisImage.h"
#include "contracts/vis/OruVisLightList.h"
#include "contracts/vis/OruVisList.h"
#include "contracts/vis/OruVisualization.h"

#include <QColor>
#include <QPoint>
#include <QString>

#include <boost/shared_ptr.hpp>

#include <memory>

class OruProcessTimes;
class OruSceneRenderContext;
class OruSceneSelectContext;

/// The renderer of one scene: it owns everything that is drawn and all that a frame needs.
///
/// Its passes bring the visualizations up to date, draw them with lights and overlays, and find what lies in
/// a pick window. Each expects viewport and matrices to be loaded (OruScene::setViewing) and the matrix mode
/// to be the model view; a viewport without area makes each one do nothing, not one OpenGL call.
///
/// An exception from a visualization leaves a pass with its attribute entry still pushed;
/// OruSceneRenderRecovery takes it off.
class KELVAR_SCENE_API OruSceneRender : public OruProperties
{
public:
    static const QString typeString;

    /// The strings are the search places of OruResource: fonts, images, the user's own files.
    OruSceneRender(OruModifiedGroup& group, const QString& fonts, const QString& images, const QString& user);

    /// Clears the frame, so the OpenGL context is current here.
    ~OruSceneRender() override;

    OruSceneRender(const OruSceneRender&) = delete;
    OruSceneRender& operator=(const OruSceneRender&) = delete;

    /// Clears color and depth of the frame, not the stencil, and begins a frame of text.
    void clear();

    /// The editor that property changes out of interaction go through: the custom one if there is one, else
    /// the default one. Never empty: one that was emptied through the reference gives way to the default one,
    /// made anew if need be. An assignment through the reference replaces that very editor; a host installs
    /// its own with setCustomEditor.
    boost::shared_ptr<IOruVisPropertyEdit>& editor();

    /// Installs a host's editor; an empty pointer brings the default one back. A change between the start and
    /// the end of an edit session gives the new editor the end.
    void setCustomEditor(const boost::shared_ptr<IOruVisPropertyEdit>& editor) { customEditor = editor; }

    /// Lets the visualizations catch up with property changes, if there were any.
    void update(const OruSceneRenderContext& rc);

    /// Tells the visualizations that the viewport has changed. Its draw context has identity matrices.
    void resize(const OruSceneRenderContext& rc);

    /// Draws one frame: the 3D pass, the 2D pass, the overlays. The frame is finished on return; the matrix
    /// stacks then hold 2D matrices, for the caller to put back.
    void draw(const OruSceneRenderContext& rc);

    /// What lies in the pick window of `sc`: the hits of the 3D pass, then those of the 2D pass. Clears the
    /// draw buffers to white, so a frame must be drawn before the next one is shown.
    OruVisHitRecordList select(const OruSceneSelectContext& sc);

private:
    friend class OruSceneRenderRecovery;

    OruResource resource;
    std::unique_ptr<OruOglGeometry> geometry;
    std::unique_ptr<OruOglCache> cache;
    OruOglText text;
    OruOglBoxedText boxedText;

    /// Color that a frame is cleared to.
    OruPropertyAdaptor<QColor> background;

    /// Shows frame rate and memory at the lower right.
    OruPropertyAdaptor<bool> textInfo;

public:
    /// Edge of the pick window, in pixels.
    OruPropertyAdaptor<float> pickSize;

    /// Character code of the decimal separator in numbers that are shown; the low 8 bits count.
    OruPropertyAdaptor<int> decimalSeparator;

    /// Digits of numbers that are shown; -1: as many as the value needs.
    OruPropertyAdaptor<int> significantDigits;

    /// All that is drawn and picked. Starts with a viewpoint, the lights and the logo.
    OruVisList visualizations;

private:
    OruVisLightList lights;
    OruVisImage logo;
    boost::shared_ptr<IOruVisPropertyEdit> customEditor;
    boost::shared_ptr<IOruVisPropertyEdit> defaultEditor;

    /// Attribute entries that running passes have pushed and not taken off.
    unsigned int openEntries = 0;

    void buildDefaultTree();
    void setLogoDefaults();
    Kelvar::Math::NumberFormat numberFormat() const;
    OruVisualization::DrawContext drawContext(const OruOglViewport& viewport);
    OruVisualization::DrawContext drawContext(const OruSceneRenderContext& rc);

    void enterPass();
    void leavePass();
    void recover(unsigned int entries);

    void draw3dPass(const OruVisualization::DrawContext& dc);
    void draw2dPass(const OruVisualization::DrawContext& dc);
    void drawOverlays(const OruSceneRenderContext& rc, const OruProcessTimes& start);
    void drawPerformance(const OruOglViewport& viewport, const OruProcessTimes& start);
    void select3dPass(const OruVisualization::SelectContext& sel, OruVisHitRecordList& hits);
    void select2dPass(OruVisualization::SelectContext& sel, OruVisHitRecordList& hits);

    static void drawBox(const OruOglViewport& box, const OruOglViewport& viewport);
    static void drawFocus(bool stippled);
    static void drawTooltip(OruOglBoxedText& boxed, const OruOglViewport& viewport, const QPoint& point,
                            const QString& tip);
};
