#pragma once

namespace hostkit {

/// What a picture of a scene is beyond its size and its view. As it starts, it is one capture and nothing
/// else.
struct PictureOptions
{
    static constexpr int mostSamples = 64;
    static constexpr double smallestOverlayScale = 0.5;
    static constexpr double largestOverlayScale = 14.0;

    /// Captures that the picture is the average of, 1 to mostSamples, each with the view shifted by parts of
    /// a pixel: edges become smooth. What lies flat over the scene does not move and stays sharp; a label of
    /// the host's own that follows a point in 3D is as soft as the edges.
    int samples = 1;

    /// Multiplies the sizes in pixels that the triad and images have as properties, texts of the triad
    /// included, so that a large picture does not leave them tiny: smallestOverlayScale to
    /// largestOverlayScale. A text grows to size 100 at most. The tooltip and the performance text have no
    /// such property and stay.
    double overlayScale = 1.0;

    /// Leaves the background out: the picture has an alpha channel, 0 where nothing was drawn and in between
    /// where something translucent was. Takes two captures a sample, over black and over white.
    bool transparent = false;
};

} // namespace hostkit
