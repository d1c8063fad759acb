#include "contracts/vis/internal/OruVisSmoothShapes.h"

#include "contracts/math/CircleTable.h"
#include "contracts/ogl/OruOglFunctions.h"
#include "contracts/ogl/OruOglGl.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace oru {

namespace {

using Kelvar::Math::CircleTable;
using Kelvar::Math::Vector3;

/// Facets round a frustum, and corners of a circle.
constexpr std::size_t facets = 16;
constexpr std::size_t corners = 32;

QPointF unit(const QPointF& vector)
{
    const double length = std::hypot(vector.x(), vector.y());
    return length > 0.0 ? vector / length : QPointF();
}

/// Where each corner moves when all edges move outwards by one; limited at sharp corners.
std::vector<QPointF> outward(const std::vector<QPointF>& points)
{
    std::vector<QPointF> moves;
    moves.reserve(points.size());
    for (std::size_t i = 0; i < points.size(); ++i) {
        const QPointF before = unit(points[i] - points[(i + points.size() - 1) % points.size()]);
        const QPointF behind = unit(points[(i + 1) % points.size()] - points[i]);
        const QPointF middle = unit(QPointF(before.y() + behind.y(), -before.x() - behind.x()));
        const double cosine = middle.x() * behind.y() - middle.y() * behind.x();
        moves.push_back(middle / std::max(cosine, 0.4));
    }
    return moves;
}

void vertex(const QPointF& point)
{
    glVertex2d(point.x() - OruOglOffCenter, point.y() - OruOglOffCenter);
}

double turn(const QPointF& a, const QPointF& b, const QPointF& c)
{
    return (b.x() - a.x()) * (c.y() - a.y()) - (b.y() - a.y()) * (c.x() - a.x());
}

/// Half of the hull: the points that turn left on the way through `points`, without the last.
void appendChain(const std::vector<QPointF>& points, std::vector<QPointF>& hull)
{
    const std::size_t start = hull.size();
    for (const QPointF& point : points) {
        while (hull.size() >= start + 2 && turn(hull[hull.size() - 2], hull.back(), point) <= 0.0) {
            hull.pop_back();
        }
        hull.push_back(point);
    }
    hull.pop_back();
}

/// The convex hull, counter-clockwise (Andrew's monotone chain).
std::vector<QPointF> hullOf(std::vector<QPointF> points)
{
    std::sort(points.begin(), points.end(), [](const QPointF& a, const QPointF& b) {
        return std::make_pair(a.x(), a.y()) < std::make_pair(b.x(), b.y());
    });
    std::vector<QPointF> hull;
    appendChain(points, hull);
    std::reverse(points.begin(), points.end());
    appendChain(points, hull);
    return hull;
}

/// Points of the two circles of a frustum, and the directions from its axis to them.
struct Rings
{
    std::vector<Vector3> spokes;
    std::vector<Vector3> start;
    std::vector<Vector3> end;

    explicit Rings(const Frustum& frustum)
    {
        const Vector3 axis = (frustum.end - frustum.start).normalized();
        const Vector3 side = cross(axis, axis.dominant() == 2 ? Vector3::X : Vector3::Z).normalized();
        const Vector3 up = cross(axis, side);
        const auto circle = CircleTable::points(facets);
        for (const Vector3& place : *circle) {
            const Vector3 spoke = side * place.x + up * place.y;
            spokes.push_back(spoke);
            start.push_back(frustum.start + spoke * frustum.startRadius);
            end.push_back(frustum.end + spoke * frustum.endRadius);
        }
    }
};

/// The color of a surface under the light.
QColor shaded(const QColor& color, const Vector3& normal)
{
    const Vector3 light = Vector3(0.35f, 0.55f, 0.76f);
    const double level = 0.55 + 0.6 * std::max(0.0f, dot(normal, light));
    const auto lit = [level](double part) { return std::min(1.0, part * level); };
    return QColor::fromRgbF(lit(color.redF()), lit(color.greenF()), lit(color.blueF()), color.alphaF());
}

void fillCap(const std::vector<Vector3>& ring, const QColor& color)
{
    glColor(color);
    glBegin(GL_POLYGON);
    for (const Vector3& point : ring) {
        glVertex2f(point.x, point.y);
    }
    glEnd();
}

void fillSides(const Frustum& frustum, const Rings& rings, const QColor& color)
{
    const Vector3 along = frustum.end - frustum.start;
    const Vector3 slope = along.normalized() * ((frustum.startRadius - frustum.endRadius) / along.length());
    glBegin(GL_QUADS);
    for (std::size_t i = 0; i < facets; ++i) {
        const std::size_t next = (i + 1) % facets;
        const Vector3 normal = ((rings.spokes[i] + rings.spokes[next]).normalized() + slope).normalized();
        if (normal.z <= 0.0f) {
            continue;
        }
        glColor(shaded(color, normal));
        for (const Vector3& point : {rings.start[i], rings.start[next], rings.end[next], rings.end[i]}) {
            glVertex2f(point.x, point.y);
        }
    }
    glEnd();
}

} // namespace

void fillConvex(const std::vector<QPointF>& points, const QColor& color)
{
    if (points.size() < 3) {
        return;
    }
    const std::vector<QPointF> moves = outward(points);
    QColor clear = color;
    clear.setAlpha(0);
    glShadeModel(GL_SMOOTH);
    glColor(color);
    glBegin(GL_POLYGON);
    for (std::size_t i = 0; i < points.size(); ++i) {
        vertex(points[i] - moves[i] * 0.5);
    }
    glEnd();
    glBegin(GL_TRIANGLE_STRIP);
    for (std::size_t i = 0; i <= points.size(); ++i) {
        const std::size_t corner = i % points.size();
        glColor(color);
        vertex(points[corner] - moves[corner] * 0.5);
        glColor(clear);
        vertex(points[corner] + moves[corner] * 0.5);
    }
    glEnd();
}

void fillPill(const QRect& pixels, const QColor& color)
{
    // From edge to edge of the outermost pixels, whose centers lie at whole numbers.
    const double radius = std::min(pixels.width(), pixels.height()) / 2.0;
    const double left = pixels.x() - 0.5 + radius;
    const double right = pixels.x() - 0.5 + pixels.width() - radius;
    const double bottom = pixels.y() - 0.5 + radius;
    const double top = pixels.y() - 0.5 + pixels.height() - radius;
    std::vector<QPointF> points;
    const auto circle = CircleTable::points(corners);
    const QPointF centers[] = {{right, top}, {left, top}, {left, bottom}, {right, bottom}};
    for (std::size_t quarter = 0; quarter < 4; ++quarter) {
        for (std::size_t i = 0; i <= corners / 4; ++i) {
            const Vector3& place = (*circle)[(quarter * corners / 4 + i) % corners];
            points.push_back(centers[quarter] + radius * QPointF(place.x, place.y));
        }
    }
    points.erase(std::unique(points.begin(), points.end()), points.end());
    fillConvex(points, color);
}

void fillFrustum(const Frustum& frustum, const QColor& color)
{
    const Rings rings(frustum);
    std::vector<QPointF> outline;
    for (const std::vector<Vector3>* ring : {&rings.start, &rings.end}) {
        for (const Vector3& point : *ring) {
            outline.emplace_back(point.x, point.y);
        }
    }
    // The outline lies under the facets and makes their edge smooth.
    const Vector3 axis = (frustum.end - frustum.start).normalized();
    fillConvex(hullOf(outline), shaded(color, Vector3::Z));
    fillSides(frustum, rings, color);
    fillCap(axis.z > 0.0f ? rings.end : rings.start, shaded(color, axis.z > 0.0f ? axis : -axis));
}

} // namespace oru
