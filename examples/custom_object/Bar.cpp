#include "Bar.h"

#include "contracts/core/OruStringBuilder.h"
#include "contracts/core/OruText.h"
#include "contracts/ogl/OruOglFunctions.h"
#include "contracts/ogl/OruOglGl.h"
#include "contracts/vis/IOruVisPropertyEdit.h"
#include "contracts/vis/OruVisList.h"
#include "contracts/vis/OruVisPickVolume.h"

#include <boost/make_shared.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

using Kelvar::Math::BoundingBox;
using Kelvar::Math::Matrix;
using Kelvar::Math::Vector3;

namespace {

const double smallestHeight = 0.1;

struct Side
{
    Vector3 normal;
    /// Corners of the box, counter-clockwise as seen from outside.
    std::array<int, 4> corners;
};

const std::array<Side, 6> sides = {{
    {-Kelvar::Math::VectorX, {0, 4, 6, 2}},
    {Kelvar::Math::VectorX, {1, 3, 7, 5}},
    {-Kelvar::Math::VectorY, {0, 1, 5, 4}},
    {Kelvar::Math::VectorY, {2, 6, 7, 3}},
    {-Kelvar::Math::VectorZ, {0, 2, 3, 1}},
    {Kelvar::Math::VectorZ, {4, 5, 7, 6}},
}};

void drawBox(const BoundingBox& box)
{
    glBegin(GL_QUADS);
    for (const Side& side : sides) {
        glNormal3f(side.normal.x, side.normal.y, side.normal.z);
        for (const int index : side.corners) {
            const Vector3 corner = box.corner(index);
            glVertex3f(corner.x, corner.y, corner.z);
        }
    }
    glEnd();
}

/// The depth at which the line from `front` (depth 0) to `back` (depth 1) enters the box, if it does.
std::optional<double> depthOnLine(const BoundingBox& box, const Vector3& front, const Vector3& back)
{
    double enter = -std::numeric_limits<double>::infinity();
    double leave = std::numeric_limits<double>::infinity();
    for (int axis = 0; axis < 3; ++axis) {
        const double way = back[axis] - front[axis];
        const double toMin = box.min()[axis] - front[axis];
        const double toMax = box.max()[axis] - front[axis];
        if (way == 0.0) {
            if (toMin > 0.0 || toMax < 0.0) {
                return std::nullopt; // beside the box all the way
            }
            continue;
        }
        enter = std::max(enter, std::min(toMin / way, toMax / way));
        leave = std::min(leave, std::max(toMin / way, toMax / way));
    }
    return enter <= leave ? std::optional<double>(enter) : std::nullopt;
}

} // namespace

/// What a bar does under the pointer. The bar owns it, so a handler that lives has a bar.
class Bar::Handler : public IOruVisEventHandler
{
public:
    explicit Handler(Bar& bar)
        : bar_(bar)
    {}

    bool OnHoverEnter(const OruVisHitRecord&, const OruStringBuilder& builder, QString& tooltip) override
    {
        tooltip = builder.line(bar_.name(), bar_.shownHeight(), bar_.height.getUnit());
        return true;
    }

    bool OnHoverLeave(const OruVisHitRecord&, const OruStringBuilder&, QString& tooltip) override
    {
        tooltip.clear();
        return true;
    }

    bool OnDrag(const OruVisHitRecord&, QPoint delta) override
    {
        bar_.drag(delta.y());
        return true;
    }

    bool OnRelease(const OruVisHitRecord&, IOruVisPropertyEdit* editor) override
    {
        return bar_.endDrag(editor);
    }

    bool OnDrop(const OruVisHitRecord&, const OruVisHitRecord&, IOruVisPropertyEdit*) override
    {
        return false;
    }

    bool OnClick(const OruVisHitRecord&, IOruVisPropertyEdit* editor) override
    {
        editor->editValue(dynamic_cast<OruVisList*>(bar_.parent()), &bar_, bar_.marked.name(),
                          oru::toString(!bar_.marked.value()));
        return true;
    }

private:
    Bar& bar_;
};

const QString Bar::typeString = QStringLiteral("example.bar");

Bar::Bar(OruModifiedGroup& modifiedGroup, const QString& barName, float x, const QColor& barColor)
    : OruVisualization(modifiedGroup, typeString)
    , height(*this, QStringLiteral("height"), 1.0, QStringLiteral("m"))
    , color(*this, QStringLiteral("color"), barColor, QString())
    , marked(*this, QStringLiteral("marked"), false, QString())
    , x_(x)
    , handler_(boost::make_shared<Handler>(*this))
{
    rename(barName);
    setReach(Reach::WhenInView);
    hitProperties.insert(hitName_.value(), OruVisHitProperty(this, {}));
}

Bar::~Bar() = default;

/// The pass has set up lights and a material that follows the current color, which is an object's to set.
void Bar::draw3d(const DrawContext&)
{
    glColor(marked.value() ? QColor(Qt::white) : color.value());
    drawBox(bounds());
}

/// Looks through the center of each pixel in the pick window, so the bar is hit just where it is seen.
OruVisHitRecordList Bar::select3d(const SelectContext& context)
{
    OruVisHitRecordList hits;
    const OruVisPickVolume window(context);
    const boost::weak_ptr<IOruVisEventHandler> handler = handler_;
    const BoundingBox box = bounds();
    const Matrix toModel = window.toWindow().inverse();
    pixelsPerUnit_ = window.toWindow().transformDirection(Kelvar::Math::VectorZ).y;
    for (int y = window.y(); y < window.y() + window.height(); ++y) {
        for (int x = window.x(); x < window.x() + window.width(); ++x) {
            const float px = static_cast<float>(x) + 0.5f;
            const float py = static_cast<float>(y) + 0.5f;
            const auto depth =
                depthOnLine(box, toModel.transform({px, py, 0.0f}), toModel.transform({px, py, 1.0f}));
            if (depth) {
                const OruVisHitRecord record = {*depth, hitName_.value()};
                hits.add(record, OruVisHitRecordList::Rank::Scene3d, window.distanceFromCenter(px, py),
                         handler, this);
            }
        }
    }
    return hits;
}

BoundingBox Bar::bounds() const
{
    return BoundingBox({x_ - 0.5f, -0.5f, 0.0f}, {x_ + 0.5f, 0.5f, static_cast<float>(shownHeight())});
}

/// While the drag goes on the new height is only shown.
void Bar::drag(int pixels)
{
    if (std::abs(pixelsPerUnit_) < 1.0f) {
        return; // seen from the top there is no up
    }
    dragged_ = std::max(smallestHeight, shownHeight() + pixels / static_cast<double>(pixelsPerUnit_));
    boundsChanged();
}

/// Its end writes it, once, through the editor.
bool Bar::endDrag(IOruVisPropertyEdit* editor)
{
    if (!dragged_) {
        return false;
    }
    const QString text = oru::toString(*dragged_);
    dragged_.reset();
    boundsChanged();
    editor->editValue(dynamic_cast<OruVisList*>(parent()), this, height.name(), text);
    return true;
}
