#include "hosts/host/internal/GlDrawable.h"

#include <GL/glx.h>

#include <algorithm>

namespace hostkit {

QSize GlDrawable::size()
{
    unsigned int width = 0;
    unsigned int height = 0;
    Display* const display = glXGetCurrentDisplay();
    if (display) {
        glXQueryDrawable(display, glXGetCurrentDrawable(), GLX_WIDTH, &width);
        glXQueryDrawable(display, glXGetCurrentDrawable(), GLX_HEIGHT, &height);
    }
    return {std::max(1, static_cast<int>(width)), std::max(1, static_cast<int>(height))};
}

} // namespace hostkit
