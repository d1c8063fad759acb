#include "hosts/mesh/internal/EdgeLines.h"

#include "contracts/math/Vector3.h"
#include "contracts/ogl/OruOglFunctions.h"
#include "contracts/ogl/OruOglGeometry.h"
#include "contracts/ogl/OruOglGl.h"
#include "contracts/ogl/OruOglMeshArrays.h"
#include "contracts/ogl/OruOglMeshBuffer.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

namespace hostkit {

using Kelvar::Math::BoundingBox;
using Kelvar::Math::Matrix;
using Kelvar::Math::Vector3;

namespace {

const QColor darkLine(16, 18, 22);
/// For surfaces on which a dark line would not show.
const QColor lightLine(140, 146, 156);
constexpr int leastGrayForDark = 70;

/// Lines come towards the eye by as many widths. A line covers pixels up to half a width beside it, where a
/// surface that is seen at a slant is nearer to the eye: this shows lines on surfaces of up to 80 degrees.
constexpr float widthsForward = 3.0f;
/// But no farther than this share of the part, or those inside would shine through when all is small.
constexpr float mostForward = 0.03f;

/// The share of a part's pixels that lines may cover before they begin to fade, and that from which on none
/// is left.
constexpr float fadingCover = 0.35f;
constexpr float fadedCover = 1.0f;

/// Plain lines without light.
class LineState
{
public:
    LineState(float width, float alpha)
    {
        glPushAttrib(GL_ENABLE_BIT | GL_LINE_BIT | GL_COLOR_BUFFER_BIT);
        glDisable(GL_LIGHTING);
        glDisable(GL_TEXTURE_2D);
        glLineWidth(width);
        if (alpha < 1.0f) {
            glEnable(GL_BLEND);
            glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
        }
    }
    ~LineState() { glPopAttrib(); }
    LineState(const LineState&) = delete;
    LineState& operator=(const LineState&) = delete;
};

/// A model view matrix in place of the one that is loaded.
class ModelViewScope
{
public:
    explicit ModelViewScope(const Matrix& modelView)
    {
        glPushMatrix();
        glLoadMatrix(modelView);
    }
    ~ModelViewScope() { glPopMatrix(); }
    ModelViewScope(const ModelViewScope&) = delete;
    ModelViewScope& operator=(const ModelViewScope&) = delete;
};

/// What a parallel view makes of lengths: pixels to the right and upwards for a step along each axis of the
/// mesh.
struct PixelSteps
{
    PixelSteps(const Matrix& modelView, const Matrix& projection, const OruOglViewport& viewport)
    {
        const Matrix toClip = modelView * projection;
        for (int axis = 0; axis < 3; ++axis) {
            right[axis] = toClip(axis, 0) * static_cast<float>(viewport.width) / 2.0f;
            up[axis] = toClip(axis, 1) * static_cast<float>(viewport.height) / 2.0f;
        }
    }

    /// Of a line, in the mean over its directions.
    float perUnit() const
    {
        float squares = 0.0f;
        for (int axis = 0; axis < 3; ++axis) {
            squares += right[axis] * right[axis] + up[axis] * up[axis];
        }
        return std::sqrt(squares / 3.0f);
    }

    /// Pixels that a box covers.
    float areaOf(const BoundingBox& box) const
    {
        const Vector3 size = box.max() - box.min();
        const std::array<float, 3> sides = {size.x, size.y, size.z};
        float area = 0.0f;
        for (int a = 0; a < 3; ++a) {
            const int b = (a + 1) % 3;
            area += std::abs((right[a] * up[b] - up[a] * right[b]) * sides[a] * sides[b]);
        }
        return area;
    }

    std::array<float, 3> right{};
    std::array<float, 3> up{};
};

/// How far lines of that many pixels come forward, in units of the eye: never out of the view.
float forwardFor(float width, const BoundingBox& box, const Matrix& modelView, const Matrix& projection,
                 const OruOglViewport& viewport)
{
    BoundingBox inEye = box;
    inEye *= modelView;
    const float eyePerPixel = 2.0f / (projection(1, 1) * static_cast<float>(viewport.height));
    const float nearPlane = (-1.0f - projection(3, 2)) / projection(2, 2);
    const float room = std::max(0.0f, 0.9f * (nearPlane - inEye.max().z));
    return std::min(
        {widthsForward * width * eyePerPixel, mostForward * (inEye.max() - inEye.min()).length(), room});
}

} // namespace

EdgeLines::EdgeLines(const Mesh& mesh)
    : mesh_(mesh)
{}

EdgeLines::~EdgeLines() = default;

float EdgeLines::widthFor(const OruOglViewport& viewport)
{
    const int longer = std::max(viewport.width, viewport.height);
    return std::max(1.0f, std::round(static_cast<float>(longer) / pixelsPerLineWidth));
}

void EdgeLines::prepare(OruOglGeometry& geometry, float angle)
{
    if (angle != angle_) {
        angle_ = angle;
        count_ = mesh_.edges().countFrom(angle);
        length_ = lengthOf(count_);
    }
    if (count_ > 0 && (!buffer_ || !buffer_->belongsTo(geometry))) {
        buffer_ = geometry.makeMesh();
        upload(*buffer_);
    }
}

/// With the positions of edges alone: they are few against those of the mesh.
void EdgeLines::upload(OruOglMeshBuffer& buffer) const
{
    constexpr uint32_t none = std::numeric_limits<uint32_t>::max();
    std::vector<uint32_t> places(mesh_.positions.size(), none);
    std::vector<Vector3> positions;
    std::vector<uint32_t> indices;
    indices.reserve(mesh_.edges().indices.size());
    for (const uint32_t vertex : mesh_.edges().indices) {
        if (places[vertex] == none) {
            places[vertex] = static_cast<uint32_t>(positions.size());
            positions.push_back(mesh_.positions[vertex]);
        }
        indices.push_back(places[vertex]);
    }
    OruOglMeshArrays arrays;
    arrays.positions = &positions.front().x;
    arrays.vertexCount = positions.size();
    arrays.indices = indices.data();
    arrays.indexCount = indices.size();
    arrays.primitive = OruOglMeshArrays::Primitive::Lines;
    buffer.upload(arrays);
}

float EdgeLines::lengthOf(std::size_t count) const
{
    double sum = 0.0;
    const uint32_t* ends = mesh_.edges().indices.data();
    for (std::size_t edge = 0; edge < count; ++edge, ends += 2) {
        sum += (mesh_.positions[ends[1]] - mesh_.positions[ends[0]]).length();
    }
    return static_cast<float>(sum);
}

void EdgeLines::draw(const Matrix& modelView, const Matrix& projection, const OruOglViewport& viewport,
                     const QColor& surface) const
{
    if (count_ == 0) {
        return;
    }
    const float width = widthFor(viewport);
    const PixelSteps steps(modelView, projection, viewport);
    const float cover = width * length_ * steps.perUnit() / std::max(steps.areaOf(mesh_.bounds), 1.0f);
    const float alpha = std::min(1.0f, (fadedCover - cover) / (fadedCover - fadingCover));
    if (!(alpha > 0.0f)) {
        return;
    }
    const float forward = forwardFor(width, mesh_.bounds, modelView, projection, viewport);
    const LineState state(width, alpha);
    const ModelViewScope nearer(modelView * Matrix::translate(Vector3(0.0f, 0.0f, forward)));
    glColor(qGray(surface.rgb()) < leastGrayForDark ? lightLine : darkLine, 255.0f * alpha);
    buffer_->draw(0, 2 * count_);
}

} // namespace hostkit
