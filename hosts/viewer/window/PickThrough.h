#pragma once

#include "contracts/math/Matrix.h"

#include <QPoint>
#include <QString>

#include <vector>

class OruVisualization;
struct OruVisHitRecord;

namespace hostkit {
class PartVisualization;
class SceneWidget;
} // namespace hostkit

/// Lets repeated clicks at one place go on to the part behind, and from the last one to the first again.
class PickThrough
{
public:
    /// `view` is borrowed and has to live as long.
    explicit PickThrough(hostkit::SceneWidget& view);

    /// The part that a click at a pixel (window coordinates) takes: the first one there, or the one behind
    /// the one that the last click took, if that was at the same place in the same view and its part is still
    /// chosen. Null: there is none. Called behind the handler of the first one, which turns its mark round.
    /// Clears the frame; the OpenGL context is current.
    const hostkit::PartVisualization* next(const QPoint& pixel);

    /// Something else was clicked: the next click takes the first part.
    void forget() { taken_.clear(); }

private:
    std::vector<const hostkit::PartVisualization*> partsAt(const QPoint& pixel) const;

    /// As far as a hand moves between two clicks, in pixels.
    static constexpr int mostPixels = 4;

    hostkit::SceneWidget& view_;
    QPoint pixel_;
    Kelvar::Math::Matrix seen_;
    /// The path of the part that the last click took; empty: there was none.
    QString taken_;
};
