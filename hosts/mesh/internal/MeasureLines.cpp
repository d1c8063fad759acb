#include "hosts/mesh/internal/MeasureLines.h"

#include "contracts/ogl/OruOglFunctions.h"
#include "contracts/ogl/OruOglGl.h"

#include <algorithm>
#include <cmath>

namespace hostkit {

using Kelvar::Math::Matrix;
using Kelvar::Math::Vector3;

namespace {

const QColor rimColor(0, 0, 0, 150);
constexpr float rimWidth = 2.0f;
constexpr float hiddenAlpha = 110.0f;

/// Lines come forward by as many of their widths, so that they show on a surface that they lie in, seen at a
/// slant, too.
constexpr double widthsForward = 3.0;

/// Without light, and a little nearer than it is.
class LineState
{
public:
    explicit LineState(double forward)
    {
        glPushAttrib(GL_ENABLE_BIT | GL_LINE_BIT | GL_DEPTH_BUFFER_BIT | GL_VIEWPORT_BIT);
        glDisable(GL_LIGHTING);
        glDisable(GL_TEXTURE_2D);
        glEnable(GL_DEPTH_TEST);
        // A shift by the range takes nothing out of the view, as one by the matrix would.
        glDepthRange(0.0, 1.0 - std::min(forward, 0.5));
    }
    ~LineState() { glPopAttrib(); }
    LineState(const LineState&) = delete;
    LineState& operator=(const LineState&) = delete;
};

void drawEnds(const std::vector<Vector3>& ends, float width)
{
    glLineWidth(width);
    glBegin(GL_LINES);
    for (const Vector3& end : ends) {
        glVertex3f(end.x, end.y, end.z);
    }
    glEnd();
}

/// The share of the depth range that so many pixels are.
double depthOf(double pixels, const Matrix& projection, const OruOglViewport& viewport)
{
    const double pixel = 2.0 / (static_cast<double>(projection(1, 1)) * viewport.height);
    return pixels * pixel * std::abs(static_cast<double>(projection(2, 2)));
}

} // namespace

MeasureLines::MeasureLines(const QColor& color, float width)
    : color_(color)
    , width_(width)
{}

void MeasureLines::draw(const std::vector<Vector3>& ends, const Matrix& projection,
                        const OruOglViewport& viewport) const
{
    const LineState state(depthOf(widthsForward * static_cast<double>(width_), projection, viewport));
    glDepthFunc(GL_GREATER);
    glColor(color_, hiddenAlpha);
    drawEnds(ends, std::max(1.0f, width_ / 2.0f));
    glDepthFunc(GL_LEQUAL);
    glColor(rimColor);
    drawEnds(ends, width_ + rimWidth);
    glColor(color_);
    drawEnds(ends, width_);
}

} // namespace hostkit
