#pragma once

#include "hosts/mesh/PartView.h"
#include "hosts/mesh/Point.h"
#include "hosts/mesh/kelvar_mesh_api.h"

#include <QPoint>

#include <functional>
#include <optional>

namespace hostkit {

class PartVisualization;

/// Finds the point of a part that is meant by a pixel on it: a corner near by, else a place on an edge near
/// by, else the place under the pixel itself.
///
/// Corners are the ends of edges, of lines, and points. Edges of a surface are those that bend as the part's
/// `edgeAngle` wants it. What lies behind something else, or is not shown where it would be, is passed over.
///
/// The first question to a mesh finds its edges, a fifth of a second for a million triangles; further ones
/// look at what is near the pixel alone.
class KELVAR_MESH_API SnapFinder
{
public:
    enum class Kind
    {
        Vertex,
        Edge,
        Face
    };

    struct Snap
    {
        /// In the frame of the scene.
        Point point;
        Kind kind;
    };

    /// What the scene shows in the square of `size` pixels about a pixel of the window: the least depth
    /// there, 0 near to 1 far; nothing: the background.
    using DepthAt = std::function<std::optional<double>(const QPoint& pixel, int size)>;

    /// `view` takes the scene to the window, parallel. `reach` is how many pixels are near.
    SnapFinder(const PartView& view, double reach, const DepthAt& depthAt);

    /// For a pixel at which the part shows at that depth.
    Snap find(const PartVisualization& part, const QPoint& pixel, double depth) const;

private:
    double depthPerPixel() const;
    bool shows(const Point& window) const;

    PartView view_;
    double reach_;
    DepthAt depthAt_;
};

} // namespace hostkit
