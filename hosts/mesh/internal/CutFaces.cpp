#include "hosts/mesh/internal/CutFaces.h"

#include "contracts/core/OruDebugLogger.h"
#include "contracts/debug/logger.h"
#include "contracts/math/DoubleMatrix.h"
#include "contracts/ogl/OruOglFunctions.h"
#include "contracts/ogl/OruOglGl.h"
#include "hosts/mesh/MeshVisualization.h"
#include "hosts/mesh/PartList.h"
#include "hosts/mesh/SectionPlanes.h"
#include "hosts/mesh/internal/EvenStep.h"
#include "hosts/mesh/internal/SectionClip.h"

#include <algorithm>

namespace hostkit {

namespace {

using Kelvar::Math::BoundingBox;
using Kelvar::Math::DoubleMatrix;
using Kelvar::Math::Matrix;
using Kelvar::Math::Vector3;

/// A face reaches beyond its part by that share of the part's size, so that rounding leaves no gap.
constexpr float faceRoom = 0.01f;

/// Saves what the drawing of cut faces changes.
class CutState
{
public:
    CutState()
    {
        glPushAttrib(GL_ENABLE_BIT | GL_COLOR_BUFFER_BIT | GL_STENCIL_BUFFER_BIT | GL_DEPTH_BUFFER_BIT |
                     GL_CURRENT_BIT | GL_TEXTURE_BIT | GL_SCISSOR_BIT | GL_LIGHTING_BIT);
    }
    ~CutState() { glPopAttrib(); }
    CutState(const CutState&) = delete;
    CutState& operator=(const CutState&) = delete;
};

void setMask(bool colors)
{
    const GLboolean mask = colors ? GL_TRUE : GL_FALSE;
    glColorMask(mask, mask, mask, mask);
}

BoundingBox grown(BoundingBox box)
{
    const float room = faceRoom * (box.max() - box.min()).length();
    const Vector3 off(room, room, room);
    box.add(box.min() - off);
    box.add(box.max() + off);
    return box;
}

bool crosses(const SectionPlane& plane, const BoundingBox& box)
{
    const float low[] = {box.min().x, box.min().y, box.min().z};
    const float high[] = {box.max().x, box.max().y, box.max().z};
    const int axis = plane.axis();
    return box.defined() && static_cast<double>(low[axis]) <= plane.place() &&
           plane.place() <= static_cast<double>(high[axis]);
}

/// The part of a plane within a box; its front looks to where the plane cuts away, and that side is lit.
void drawFace(const SectionPlane& plane, const BoundingBox& box)
{
    auto corners = plane.across(grown(box));
    if (plane.flipped.value()) {
        std::reverse(corners.begin(), corners.end());
    }
    const auto kept = plane.kept();
    glNormal3d(-kept[0], -kept[1], -kept[2]);
    glBegin(GL_QUADS);
    for (const Vector3& corner : corners) {
        glVertex3f(corner.x, corner.y, corner.z);
    }
    glEnd();
}

} // namespace

CutFaces::CutFaces(const SectionPlanes& planes, const PartList& model, const Matrix& place,
                   const OruVisualization::DrawContext& context)
    : planes_(planes)
    , model_(model)
    , place_(place)
    , context_(context)
{}

void CutFaces::draw() const
{
    const OruOglViewport& viewport = context_.viewport;
    for (const SectionPlane* const plane : planes_.active()) {
        const Parts parts = partsAcross(*plane);
        if (parts.empty()) {
            continue;
        }
        const bool room = planes_.canvas().resize(viewport.width, viewport.height);
        oru::debug_logger::debuglogger().ensure(room, "no room for cut faces");
        if (room) {
            fill(*plane, parts);
            layDown(*plane, parts);
        }
    }
}

CutFaces::Parts CutFaces::partsAcross(const SectionPlane& plane) const
{
    Parts parts;
    collect(model_, plane, parts);
    return parts;
}

void CutFaces::collect(const PartList& list, const SectionPlane& plane, Parts& parts) const
{
    for (unsigned int i = 0; i < list.size(); ++i) {
        OruProperties* const child = list.at(i);
        if (auto* const part = dynamic_cast<MeshVisualization*>(child)) {
            if (part->canBeCapped() && crosses(plane, boxOf(*part))) {
                parts.push_back(part);
            }
        } else if (const auto* const below = dynamic_cast<const PartList*>(child)) {
            if (below->visible.value()) {
                collect(*below, plane, parts);
            }
        }
    }
}

BoundingBox CutFaces::boxOf(const MeshVisualization& part) const
{
    BoundingBox box = part.bounds();
    box *= place_;
    return box;
}

void CutFaces::fill(const SectionPlane& plane, const Parts& parts) const
{
    const OruOglCanvas::Drawing drawing(planes_.canvas());
    const CutState state;
    glDisable(GL_SCISSOR_TEST);
    glDisable(GL_DEPTH_TEST);
    glDisable(GL_CULL_FACE);
    glDisable(GL_BLEND);
    glDisable(GL_ALPHA_TEST);
    glEnable(GL_STENCIL_TEST);
    setMask(true);
    glStencilMask(0xff);
    glClearColor(0.0f, 0.0f, 0.0f, 0.0f);
    glClearStencil(0);
    glClear(GL_COLOR_BUFFER_BIT | GL_STENCIL_BUFFER_BIT);
    for (MeshVisualization* const part : parts) {
        fillPart(plane, *part);
    }
}

/// The other planes cut the face, and not what it is counted from: a look that they end would leave nothing.
void CutFaces::fillPart(const SectionPlane& plane, MeshVisualization& part) const
{
    count(plane, part);
    const BoundingBox box = boxOf(part);
    glStencilFunc(GL_NOTEQUAL, 0, 0xff);
    glStencilOp(GL_KEEP, GL_KEEP, GL_KEEP);
    setMask(true);
    {
        const SectionClip clip(planes_, &plane);
        glColor(part.capColor());
        drawFace(plane, box);
    }
    setMask(false);
    glStencilOp(GL_ZERO, GL_ZERO, GL_ZERO);
    drawFace(plane, box);
}

void CutFaces::count(const SectionPlane& plane, MeshVisualization& part) const
{
    const SectionClip clip(plane);
    glDisable(GL_LIGHTING); // its attributes are put back with the clip
    setMask(false);
    glStencilFunc(GL_ALWAYS, 0, 0xff);
    glStencilOpSeparate(GL_FRONT, GL_KEEP, GL_KEEP, GL_DECR_WRAP);
    glStencilOpSeparate(GL_BACK, GL_KEEP, GL_KEEP, GL_INCR_WRAP);
    glPushMatrix();
    glMultMatrixf(place_.data());
    part.drawForCap(context_);
    glPopMatrix();
}

/// The canvas covers the viewport, so that a point of the plane has its color where it is seen.
void CutFaces::layDown(const SectionPlane& plane, const Parts& parts) const
{
    BoundingBox box;
    for (const MeshVisualization* const part : parts) {
        box.add(boxOf(*part));
    }
    const CutState state;
    const EvenStep step;
    glDisable(GL_LIGHTING);
    glDisable(GL_CULL_FACE);
    glDisable(GL_BLEND);
    glEnable(GL_ALPHA_TEST);
    glAlphaFunc(GL_GREATER, 0.5f);
    glEnable(GL_TEXTURE_2D);
    glBindTexture(GL_TEXTURE_2D, planes_.canvas().texture());
    glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_REPLACE);
    const DoubleMatrix seen = DoubleMatrix(context_.modelView) * DoubleMatrix(context_.projection);
    glBegin(GL_QUADS);
    for (const Vector3& corner : plane.across(grown(box))) {
        const double point[3] = {corner.x, corner.y, corner.z};
        double clip[4];
        seen.transform(point, clip);
        glTexCoord4d((clip[0] + clip[3]) / 2.0, (clip[1] + clip[3]) / 2.0, 0.0, clip[3]);
        glVertex3f(corner.x, corner.y, corner.z);
    }
    glEnd();
}

} // namespace hostkit
