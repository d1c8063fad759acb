#include "contracts/ogl/OruOglFunctions.h"

#include "contracts/ogl/OruOglGl.h"
#include "contracts/ogl/internal/OruOglPixelTransfer.h"

#include <QColor>
#include <QImage>

#include <algorithm>
#include <cmath>

using Kelvar::Math::BoundingBox;
using Kelvar::Math::Matrix;

namespace {

/// Eye space depths from the nearer to the farther plane: distances along -z.
struct DepthRange
{
    double near;
    double far;
};

constexpr DepthRange defaultRange{-1.0, 1.0};
constexpr double marginShare = 0.05;
constexpr double smallestHalfDepth = 1e-3;
constexpr double smallestRelativeHalfDepth = 1e-5;

/// Beyond this the entries of the projection or of its inverse would leave the range of float.
constexpr double largestDepth = 1e30;

DepthRange depthRange(const BoundingBox& box, const Matrix& modelView)
{
    BoundingBox inEye = box;
    inEye *= modelView;
    if (!inEye.defined()) {
        return defaultRange;
    }
    const double smallest = -static_cast<double>(inEye.max().z);
    const double largest = -static_cast<double>(inEye.min().z);
    if (!(std::abs(smallest) < largestDepth && std::abs(largest) < largestDepth)) {
        return defaultRange;
    }
    const double middle = (smallest + largest) / 2.0;
    const double half = std::max({(largest - smallest) * (0.5 + marginShare), smallestHalfDepth,
                                  std::abs(middle) * smallestRelativeHalfDepth});
    return {middle - half, middle + half};
}

void flipUpright(QImage& image)
{
    const int bytes = image.bytesPerLine();
    for (int top = 0, bottom = image.height() - 1; top < bottom; ++top, --bottom) {
        std::swap_ranges(image.scanLine(top), image.scanLine(top) + bytes, image.scanLine(bottom));
    }
}

/// 0 to 255; a value that is not a number counts as opaque.
GLubyte alphaByte(float alpha)
{
    return alpha < 255.0f ? static_cast<GLubyte>(std::lround(std::max(alpha, 0.0f))) : GLubyte(255);
}

/// Colors of an extended range reach beyond 0 to 255.
GLubyte byte(int component)
{
    return static_cast<GLubyte>(std::clamp(component, 0, 255));
}

} // namespace

void glViewport(const OruOglViewport& viewport)
{
    glViewport(viewport.x, viewport.y, std::max(viewport.width, 0), std::max(viewport.height, 0));
}

OruOglViewport glGetViewport()
{
    GLint values[4] = {0, 0, 0, 0};
    glGetIntegerv(GL_VIEWPORT, values);
    return OruOglViewport(values[0], values[1], values[2], values[3]);
}

void gluOrtho2D(const OruOglViewport& viewport)
{
    constexpr double start = -0.5 - OruOglOffCenter;
    glOrtho(start, start + std::max(viewport.width, 1), start, start + std::max(viewport.height, 1), -1.0,
            1.0);
}

Matrix glGetModelViewMatrix()
{
    Matrix matrix;
    glGetFloatv(GL_MODELVIEW_MATRIX, matrix.data());
    return matrix;
}

void glLoadMatrix(const Matrix& matrix)
{
    glLoadMatrixf(matrix.data());
}

Matrix glGetOrtho(const OruOglViewport& viewport, const BoundingBox& box, const Matrix& modelView)
{
    const DepthRange range = depthRange(box, modelView);
    const double depth = range.far - range.near;
    Matrix projection;
    projection(0, 0) =
        viewport.empty() ? 1.0f : static_cast<float>(static_cast<double>(viewport.height) / viewport.width);
    projection(2, 2) = static_cast<float>(-2.0 / depth);
    projection(3, 2) = static_cast<float>(-(range.far + range.near) / depth);
    return projection;
}

void glClearColor(const QColor& color)
{
    glClearColor(static_cast<GLclampf>(color.redF()), static_cast<GLclampf>(color.greenF()),
                 static_cast<GLclampf>(color.blueF()), static_cast<GLclampf>(color.alphaF()));
}

void glColor(const QColor& color)
{
    glColor4ub(byte(color.red()), byte(color.green()), byte(color.blue()), byte(color.alpha()));
}

void glColor(const QColor& color, float alpha)
{
    glColor4ub(byte(color.red()), byte(color.green()), byte(color.blue()), alphaByte(alpha));
}

void glReadPixels(int x, int y, int width, int height, QImage& image)
{
    image = width < 1 || height < 1 ? QImage() : QImage(width, height, QImage::Format_RGB888);
    if (image.isNull()) {
        return;
    }
    image.fill(0);
    {
        // Lines of a QImage start at multiples of four bytes.
        const OruOglPixelTransfer transfer(4);
        glReadPixels(x, y, width, height, GL_RGB, GL_UNSIGNED_BYTE, image.bits());
    }
    flipUpright(image);
}
