#pragma once

#include "contracts/ogl/OruOglGl.h"

namespace hostkit {

/// The pass culls back faces and lights both sides. Of a closed mesh the inner side never shows, so it is not
/// lit; an open mesh shows both sides.
class ShownSides
{
public:
    explicit ShownSides(bool closed)
        : closed_(closed)
    {
        if (closed_) {
            glLightModeli(GL_LIGHT_MODEL_TWO_SIDE, 0);
        } else {
            glDisable(GL_CULL_FACE);
        }
    }
    ~ShownSides()
    {
        if (closed_) {
            glLightModeli(GL_LIGHT_MODEL_TWO_SIDE, 1);
        } else {
            glEnable(GL_CULL_FACE);
        }
    }
    ShownSides(const ShownSides&) = delete;
    ShownSides& operator=(const ShownSides&) = delete;

private:
    bool closed_;
};

} // namespace hostkit
