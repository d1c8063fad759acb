#pragma once

/// The framebuffer object of one capture, with a color and a depth renderbuffer of the capture's size.
///
/// Made and bound by the constructor. `release` returns to the window's framebuffer and deletes the three
/// objects; the destructor does the same if nobody has. GLEW must have been initialised.
class OruSceneCaptureTarget
{
public:
    /// Width and height in pixels. A size that OpenGL does not take makes the target incomplete.
    OruSceneCaptureTarget(int width, int height);
    ~OruSceneCaptureTarget();
    OruSceneCaptureTarget(const OruSceneCaptureTarget&) = delete;
    OruSceneCaptureTarget& operator=(const OruSceneCaptureTarget&) = delete;

    bool complete() const;

    /// Idempotent.
    void release();

    /// Deletes the objects only, which also unbinds the framebuffer. For a target that nothing was drawn to.
    void discard();

private:
    void attachColor(int width, int height);
    void attachDepth(int width, int height);

    unsigned int frame_ = 0;
    unsigned int color_ = 0;
    unsigned int depth_ = 0;
};
