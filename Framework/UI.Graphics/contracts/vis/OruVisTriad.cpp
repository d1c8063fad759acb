#include "contracts/vis/OruVisTriad.h"

#include "Scene/navigation/OruPropertyAdaptor.h"
#include "contracts/core/OruModifiedGroup.h"
#include "contracts/core/OruPropertyKind.h"
#include "contracts/core/OruStringBuilder.h"
#include "contracts/math/Vector3.h"
#include "contracts/ogl/OruOglCache.h"
#include "contracts/ogl/OruOglFlatState.h"
#include "contracts/ogl/OruOglText.h"
#include "contracts/ogl/OruOglViewport.h"
#include "contracts/vis/IOruVisEventHandler.h"
#include "contracts/vis/IOruVisPropertyEdit.h"
#include "contracts/vis/OruVisHitProperty.h"
#include "contracts/vis/OruVisHitRecord.h"
#include "contracts/vis/OruVisHitRecordList.h"
#include "contracts/vis/OruVisPickVolume.h"
#include "contracts/vis/internal/OruVisAlignmentKind.h"
#include "contracts/vis/internal/OruVisSmoothShapes.h"

#include <algorithm>

const QString OruVisTriad::typeString = QStringLiteral("vis.triad");

namespace {

using Kelvar::Math::Vector3;
using Layout = OruVisTriadLayout;

constexpr OruPropertyKind lengths = OruPropertyKind::of<float>().from(0.0);
constexpr OruPropertyKind textSizes = OruPropertyKind::of<int>().from(1).to(100);

/// X, Y, Z and the isometric label.
const QColor axisColors[] = {QColor(205, 62, 62), QColor(62, 150, 62), QColor(58, 104, 214)};
const QColor isometricColor(104, 110, 120);

/// Parts of an axis in lengths of it: where the arrow head begins, and the radii.
constexpr float headStart = 0.68f;
constexpr float headRadius = 0.125f;
constexpr float shaftRadius = 0.045f;
constexpr float reverseRadius = 0.02f;

QColor colorOf(int label)
{
    if (label == Layout::Isometric) {
        return isometricColor;
    }
    const QColor& axis = axisColors[label % 3];
    return label < 3 ? axis : axis.darker(145);
}

/// The axis with its arrow head, or the thin line that goes on behind the center. The farther end first.
void drawArm(const Layout& layout, int label)
{
    const Vector3 center(static_cast<float>(layout.center().x()), static_cast<float>(layout.center().y()),
                         0.0f);
    const float length = layout.length();
    const Vector3 tip = layout.axis(label % 3) * (label < 3 ? length : -length);
    const QColor color = colorOf(label);
    if (label >= 3) {
        oru::fillFrustum({center, center + tip, reverseRadius * length, reverseRadius * length}, color);
        return;
    }
    const Vector3 neck = center + tip * headStart;
    const oru::Frustum shaft = {center, neck, shaftRadius * length, shaftRadius * length};
    const oru::Frustum head = {neck, center + tip, headRadius * length, 0.0f};
    const bool towardsViewer = tip.z > 0.0f;
    oru::fillFrustum(towardsViewer ? shaft : head, color);
    oru::fillFrustum(towardsViewer ? head : shaft, color);
}

} // namespace

/// Marks the label under the pointer. Clicks on labels are the dispatch's own affair.
class OruVisTriad::Handler : public IOruVisEventHandler
{
public:
    unsigned int hovered() const { return hovered_; }

    bool OnHoverEnter(const OruVisHitRecord& hit, const OruStringBuilder& /*builder*/,
                      QString& /*tooltip*/) override
    {
        return mark(hit.name);
    }
    bool OnHoverLeave(const OruVisHitRecord& /*hit*/, const OruStringBuilder& /*builder*/,
                      QString& /*tooltip*/) override
    {
        return mark(OruVisHitRecord::INVALID_NAME);
    }
    bool OnDrag(const OruVisHitRecord& /*hit*/, QPoint /*delta*/) override { return false; }
    bool OnRelease(const OruVisHitRecord& /*hit*/, IOruVisPropertyEdit* /*editor*/) override { return false; }
    bool OnDrop(const OruVisHitRecord& /*hit*/, const OruVisHitRecord& /*target*/,
                IOruVisPropertyEdit* /*editor*/) override
    {
        return false;
    }
    bool OnClick(const OruVisHitRecord& /*hit*/, IOruVisPropertyEdit* /*editor*/) override { return false; }

private:
    bool mark(unsigned int name)
    {
        const bool changed = hovered_ != name;
        hovered_ = name;
        return changed;
    }

    unsigned int hovered_ = OruVisHitRecord::INVALID_NAME;
};

OruVisTriad::OruVisTriad(OruModifiedGroup& modifiedGroup)
    : OruVisualization(modifiedGroup, typeString)
    , labelX(*this, QStringLiteral("labelX"), QStringLiteral("X"), QString())
    , labelY(*this, QStringLiteral("labelY"), QStringLiteral("Y"), QString())
    , labelZ(*this, QStringLiteral("labelZ"), QStringLiteral("Z"), QString())
    , labelXReverse(*this, QStringLiteral("labelXReverse"), QStringLiteral("-X"), QString())
    , labelYReverse(*this, QStringLiteral("labelYReverse"), QStringLiteral("-Y"), QString())
    , labelZReverse(*this, QStringLiteral("labelZReverse"), QStringLiteral("-Z"), QString())
    , labelIsometric(*this, QStringLiteral("labelIsometric"), QStringLiteral("Iso"), QString())
    , alignment(*this, QStringLiteral("alignment"), static_cast<int>(Qt::AlignLeft | Qt::AlignBottom),
                QString())
    , length(*this, QStringLiteral("length"), 44.0f, QString())
    , margin(*this, QStringLiteral("margin"), 8.0f, QString())
    , textSize(*this, QStringLiteral("textSize"), 7, QString())
    , order(*this, QStringLiteral("order"), 100, QString())
    , handler_(new Handler)
{
    alignment.setKind(oru::alignmentKind);
    length.setKind(lengths);
    textSize.setKind(textSizes);
    const OruPropertyAdaptor<QString>* const texts[] = {
        &labelX, &labelY, &labelZ, &labelXReverse, &labelYReverse, &labelZReverse, &labelIsometric};
    for (std::size_t i = 0; i < parts_.size(); ++i) {
        Part& part = parts_[i];
        part.text = texts[i];
        part.qualifier.reset(new OruVisHitLabelQualifier(part.text->value()));
        hitProperties.insert(part.name.value(), OruVisHitProperty(this, part.qualifier));
    }
}

OruVisTriad::~OruVisTriad() = default;

void OruVisTriad::refreshTexts()
{
    for (Part& part : parts_) {
        part.qualifier->label = part.text->value();
    }
}

OruOglText& OruVisTriad::textFor(OruOglCache& cache)
{
    if (!text_ || textCache_ != &cache || textSizeMade_ != textSize.value()) {
        textCache_ = &cache;
        textSizeMade_ = textSize.value();
        const int size = std::max(1, textSizeMade_);
        text_ = std::make_unique<OruOglText>(cache, static_cast<unsigned int>(size), OruOglText::defaultFace);
    }
    return *text_;
}

OruVisTriadLayout OruVisTriad::layoutIn(const OruOglViewport& viewport, const OruOglText& text) const
{
    OruVisTriadLayout::Request request;
    request.viewport = QSize(viewport.width, viewport.height);
    request.orientation = orientation_;
    request.alignment = alignment.value();
    request.length = length.value();
    request.margin = margin.value();
    std::transform(parts_.begin(), parts_.end(), request.texts.begin(),
                   [&](const Part& part) { return text.size(part.text->value()); });
    return OruVisTriadLayout(request);
}

void OruVisTriad::update(const DrawContext& /*context*/)
{
    refreshTexts();
}

void OruVisTriad::draw3d(const DrawContext& context)
{
    orientation_ = context.modelView.orientation();
}

OruVisHitRecordList OruVisTriad::select3d(const SelectContext& context)
{
    orientation_ = context.modelView.orientation();
    return OruVisHitRecordList();
}

void OruVisTriad::draw2d(const DrawContext& context)
{
    OruOglText& text = textFor(context.cache);
    const OruVisTriadLayout layout = layoutIn(context.viewport, text);
    const OruOglFlatState state;
    state.blend();
    for (const OruVisTriadLayout::Label& label : layout.labels()) {
        if (label.number != OruVisTriadLayout::Isometric) {
            drawArm(layout, label.number);
        }
        if (!label.shown) {
            continue;
        }
        const Part& part = parts_[static_cast<std::size_t>(label.number)];
        const bool marked = part.name.value() == handler_->hovered();
        const QColor color = colorOf(label.number);
        oru::fillPill(label.box, marked ? color.lighter(150) : color);
        const QSize extent = text.size(part.text->value());
        text.setColor(Qt::white);
        text.draw(QPoint(label.box.x() + (label.box.width() - extent.width() + 1) / 2,
                         label.box.y() + (label.box.height() - extent.height()) / 2),
                  part.text->value());
    }
}

OruVisHitRecordList OruVisTriad::select2d(const SelectContext& context)
{
    refreshTexts();
    const OruVisTriadLayout layout = layoutIn(context.viewport, textFor(context.cache));
    const OruVisPickVolume pick(context);
    OruVisHitRecordList hits;
    for (const OruVisTriadLayout::Label& label : layout.labels()) {
        const QRect& box = label.box;
        const int right = box.x() + box.width() - 1;
        const int top = box.y() + box.height() - 1;
        if (label.shown && pick.meets2d(box.x(), box.y(), right, top)) {
            hits.add({0.0, parts_[static_cast<std::size_t>(label.number)].name.value()},
                     OruVisHitRecordList::Rank::Flat2d, pick.distance2d(box.x(), box.y(), right, top),
                     handler_, this);
        }
    }
    return hits;
}

int OruVisTriad::drawOrder() const
{
    return order.value();
}
