#pragma once

#include "Scene/core/OruSceneEventContext.h"
#include "hosts/host/PictureOptions.h"

#include <QImage>
#include <QPointF>

#include <vector>

class OruProperties;
class OruScene;

namespace hostkit {

class PictureSum;

/// Makes one picture of a scene out of several captures.
///
/// A capture draws twice, the second time for the window. Here the scene is told that the window is empty, so
/// that only the first draws count: whoever makes a picture draws the window once behind it. The tree is as
/// it was when make() returns or throws.
class PictureMaker
{
public:
    /// `shot` is what a capture draws: its viewport is the picture's size, its model view the view.
    PictureMaker(OruScene& scene, const OruSceneEventContext& shot);

    /// A null image: a capture could not be made, or the options are out of their ranges; why is on the error
    /// stream. Throws std::bad_alloc, and what a draw throws.
    QImage make(const PictureOptions& options);

    /// Where in a pixel the samples lie, from -0.5 to 0.5 in both directions, centered on 0. No two share a
    /// row or a column.
    static std::vector<QPointF> positions(int samples);

private:
    QImage sampled(const PictureOptions& options);
    bool addSample(PictureSum& sum, const QPointF& shift, bool transparent);
    bool addPerformanceText(QImage& picture);
    void leaveWindow();
    QImage capture(const QPointF& shift);
    OruProperties& render();

    OruScene& scene_;
    OruSceneEventContext shot_;
};

} // namespace hostkit
