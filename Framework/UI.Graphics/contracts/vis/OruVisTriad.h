#pragma once

#include "contracts/vis/OruVisHitLabelQualifier.h"
#include "contracts/vis/OruVisHitName.h"
#include "contracts/vis/OruVisTriadLayout.h"
#include "contracts/vis/OruVisualization.h"
#include "contracts/vis/kelvar_vis_api.h"

#include <boost/shared_ptr.hpp>

#include <array>
#include <memory>

/// Three axes in a corner of the viewport that turn with the view, and seven labels to click.
///
/// Six labels sit on the ends of the axes and one, the isometric view's, under them. Every label is a hit
/// name of its own, whose hit property names this triad and the text of the label. The labels that lie behind
/// another one's box, at the ends of an axis that points at the viewer, are neither drawn nor picked.
class KELVAR_VIS_API OruVisTriad : public OruVisualization
{
public:
    static const QString typeString;

    explicit OruVisTriad(OruModifiedGroup& modifiedGroup);
    ~OruVisTriad() override;

    /// Texts of the labels, for the views along the axes, against them and the isometric one; the keys are
    /// the members' names.
    OruPropertyAdaptor<QString> labelX;
    OruPropertyAdaptor<QString> labelY;
    OruPropertyAdaptor<QString> labelZ;
    OruPropertyAdaptor<QString> labelXReverse;
    OruPropertyAdaptor<QString> labelYReverse;
    OruPropertyAdaptor<QString> labelZReverse;
    OruPropertyAdaptor<QString> labelIsometric;

    /// Corner or side of the viewport, Qt::AlignmentFlag values; key "alignment".
    OruPropertyAdaptor<int> alignment;

    /// Length of an axis from the center in pixels; key "length". The triad shrinks with a viewport of which
    /// it would take more than half, and is not shown below a third of its length.
    OruPropertyAdaptor<float> length;

    /// Distance kept from the sides of the viewport in pixels; key "margin".
    OruPropertyAdaptor<float> margin;

    /// Size of the labels' text as OruOglText measures it; key "textSize".
    OruPropertyAdaptor<int> textSize;

    /// drawOrder(); key "order".
    OruPropertyAdaptor<int> order;

    /// Brings the hit properties up to the labels' texts.
    void update(const DrawContext& context) override;

    /// Takes the orientation of the view for the 2D pass behind it; draws nothing.
    void draw3d(const DrawContext& context) override;
    void draw2d(const DrawContext& context) override;
    OruVisHitRecordList select3d(const SelectContext& context) override;
    OruVisHitRecordList select2d(const SelectContext& context) override;
    int drawOrder() const override;

private:
    class Handler;

    /// A label's text, its hit name and what that means.
    struct Part
    {
        const OruPropertyAdaptor<QString>* text;
        OruVisHitName name;
        boost::shared_ptr<OruVisHitLabelQualifier> qualifier;
    };

    void refreshTexts();
    OruOglText& textFor(OruOglCache& cache);
    OruVisTriadLayout layoutIn(const OruOglViewport& viewport, const OruOglText& text) const;

    std::array<Part, 7> parts_;
    boost::shared_ptr<Handler> handler_;
    /// Of the view in the last 3D pass.
    Kelvar::Math::Matrix orientation_;
    /// Made for a cache and a text size.
    std::unique_ptr<OruOglText> text_;
    const OruOglCache* textCache_ = nullptr;
    int textSizeMade_ = 0;
};
