#include "hosts/mesh/SectionPlane.h"

#include "contracts/core/OruText.h"
#include "contracts/ogl/OruOglFunctions.h"
#include "contracts/ogl/OruOglGl.h"
#include "contracts/vis/IOruVisPropertyEdit.h"
#include "contracts/vis/OruVisHitRecordList.h"
#include "contracts/vis/OruVisList.h"
#include "contracts/vis/OruVisPickVolume.h"
#include "hosts/mesh/SectionPlanes.h"
#include "hosts/mesh/internal/SectionHandle.h"

#include <QColor>

#include <boost/make_shared.hpp>

#include <algorithm>
#include <cmath>

namespace hostkit {

namespace {

using Kelvar::Math::BoundingBox;
using Kelvar::Math::Vector3;

constexpr const char* axisNames[] = {"x", "y", "z"};

/// Those of the axes in the corner.
const QColor axisColors[] = {QColor(214, 64, 64), QColor(72, 160, 72), QColor(64, 104, 214)};

/// The frame stands off the models by that share of their extent along each axis: little enough for its
/// corners to be in every view that is fitted to the models.
constexpr float frameRoom = 0.04f;

constexpr float frameWidth = 1.5f;

/// Edge of the handle, in pixels.
constexpr float handlePixels = 13.0f;

float& along(Vector3& point, int axis)
{
    float* const coordinates[] = {&point.x, &point.y, &point.z};
    return *coordinates[axis];
}

Vector3 axisOf(int axis)
{
    Vector3 unit;
    along(unit, axis) = 1.0f;
    return unit;
}

} // namespace

const QString SectionPlane::typeString = QStringLiteral("hostkit.sectionPlane");

SectionPlane::SectionPlane(OruModifiedGroup& modifiedGroup, int axis)
    : OruVisualization(modifiedGroup, typeString)
    , active(*this, QStringLiteral("active"), false, QString())
    , position(*this, QStringLiteral("position"), 0.0, QString())
    , flipped(*this, QStringLiteral("flipped"), false, QString())
    , framed(*this, QStringLiteral("framed"), true, QString())
    , axis_(axis)
    , handler_(boost::make_shared<SectionHandle>(*this))
{
    rename(QString::fromLatin1(axisNames[axis]));
    hitProperties.insert(hitName_.value(), OruVisHitProperty(this, {}));
}

SectionPlane::~SectionPlane() = default;

std::array<double, 4> SectionPlane::kept() const
{
    const double side = flipped.value() ? 1.0 : -1.0;
    std::array<double, 4> plane{};
    plane[static_cast<std::size_t>(axis_)] = side;
    plane[3] = -side * place();
    return plane;
}

std::array<Vector3, 4> SectionPlane::across(const BoundingBox& box) const
{
    const int first = (axis_ + 1) % 3;
    const int second = (axis_ + 2) % 3;
    const bool upper[4][2] = {{false, false}, {true, false}, {true, true}, {false, true}};
    Vector3 low = box.min();
    Vector3 high = box.max();
    std::array<Vector3, 4> corners;
    for (std::size_t i = 0; i < corners.size(); ++i) {
        along(corners[i], axis_) = static_cast<float>(place());
        along(corners[i], first) = along(upper[i][0] ? high : low, first);
        along(corners[i], second) = along(upper[i][1] ? high : low, second);
    }
    return corners;
}

bool SectionPlane::shown() const
{
    return active.value() && framed.value() && frame().defined();
}

/// What the frame goes round.
BoundingBox SectionPlane::frame() const
{
    const auto* const planes = dynamic_cast<const SectionPlanes*>(parent());
    BoundingBox box = planes ? planes->extent() : BoundingBox();
    if (box.defined()) {
        const Vector3 off = (box.max() - box.min()) * frameRoom;
        box.add(box.min() - off);
        box.add(box.max() + off);
    }
    return box;
}

Vector3 SectionPlane::handle() const
{
    return across(frame())[2];
}

/// The same pixel at the next depth that is drawn: the frame stands off the models, and the depth range ends
/// with them.
Vector3 SectionPlane::withinDepth(const Vector3& point) const
{
    constexpr float rounding = 1e-3f;
    Vector3 seen = point.project(view_.modelView, view_.projection, view_.viewport.data());
    seen.z = std::clamp(seen.z, rounding, 1.0f - rounding);
    return seen.unProject(view_.modelView, view_.projection, view_.viewport.data());
}

void SectionPlane::draw3d(const DrawContext& context)
{
    view_ = {context.modelView, context.projection, context.viewport};
    if (!shown()) {
        return;
    }
    glPushAttrib(GL_ENABLE_BIT | GL_CURRENT_BIT | GL_LINE_BIT | GL_POINT_BIT | GL_DEPTH_BUFFER_BIT |
                 GL_VIEWPORT_BIT);
    glDisable(GL_LIGHTING);
    // Its color goes with the attributes. That of a material would stay until the current one is another.
    glDisable(GL_COLOR_MATERIAL);
    glLineWidth(frameWidth);
    glColor(axisColors[axis_]);
    glBegin(GL_LINE_LOOP);
    for (const Vector3& corner : across(frame())) {
        const Vector3 at = withinDepth(corner);
        glVertex3f(at.x, at.y, at.z);
    }
    glEnd();
    // The handle can be taken wherever it is: it goes in front of all, also of what is drawn after it.
    glDepthFunc(GL_ALWAYS);
    glDepthRange(0.0, 0.0);
    glPointSize(handlePixels);
    const Vector3 at = withinDepth(handle());
    glBegin(GL_POINTS);
    glVertex3f(at.x, at.y, at.z);
    glEnd();
    glPopAttrib();
}

/// Whatever lies before it: it is drawn over all that.
OruVisHitRecordList SectionPlane::select3d(const SelectContext& context)
{
    OruVisHitRecordList hits;
    if (!shown()) {
        return hits;
    }
    const OruVisPickVolume volume(context);
    const Vector3 at = handle().project(context.modelView, context.projection, context.viewport.data());
    const double x = static_cast<double>(at.x) - context.pickPoint.x() - 0.5;
    const double y = static_cast<double>(at.y) - context.pickPoint.y() - 0.5;
    const double reach = (static_cast<double>(handlePixels) + context.pickSize.width()) / 2.0;
    if (!volume.empty() && std::max(std::abs(x), std::abs(y)) <= reach) {
        OruVisHitRecord record;
        record.distance = 0.0;
        record.name = hitName_.value();
        hits.add(record, OruVisHitRecordList::Rank::Scene3d, std::hypot(x, y), handler_, this);
    }
    return hits;
}

/// As far as the pixels go along the axis as it is seen; an axis that points at the eye does not move.
void SectionPlane::moveBy(const QPoint& delta)
{
    const Vector3 from = handle();
    const auto seen = [&](const Vector3& point) {
        return point.project(view_.modelView, view_.projection, view_.viewport.data());
    };
    const float step = (frame().max() - frame().min()).length() / 2.0f;
    const Vector3 way = seen(from + axisOf(axis_) * step) - seen(from);
    const float length = way.x * way.x + way.y * way.y;
    if (length > 1.0f) {
        const float share =
            (static_cast<float>(delta.x()) * way.x + static_cast<float>(delta.y()) * way.y) / length;
        dragged_ += static_cast<double>(share * step);
        touch();
    }
}

bool SectionPlane::endMove(IOruVisPropertyEdit* editor)
{
    const double moved = place();
    const bool changed = dragged_ != 0.0;
    dragged_ = 0.0;
    if (changed) {
        touch();
        editor->editValue(dynamic_cast<OruVisList*>(parent()), this, position.name(), oru::toString(moved));
    }
    return changed;
}

} // namespace hostkit
