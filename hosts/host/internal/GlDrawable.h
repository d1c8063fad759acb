#pragma once

#include <QSize>

namespace hostkit {

/// The window that the current OpenGL context draws into.
struct GlDrawable
{
    /// Its pixels as the window system counts them; at least 1 x 1. With a broken pixel ratio the size that
    /// Qt tells can be off by one, and then so would be every row counted from the top.
    static QSize size();
};

} // namespace hostkit
