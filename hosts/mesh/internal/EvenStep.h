#pragma once

#include "contracts/ogl/OruOglGl.h"

namespace hostkit {

/// The pass steps surfaces back, the farther the steeper they are seen. Along an outline that takes the front
/// behind what lies a pixel's way behind it, the inner side of the back above all, which shows as specks. So
/// all surfaces step back alike.
class EvenStep
{
public:
    EvenStep() { glPolygonOffset(0.0f, 1.0f); }
    ~EvenStep() { glPolygonOffset(1.0f, 1.0f); }
    EvenStep(const EvenStep&) = delete;
    EvenStep& operator=(const EvenStep&) = delete;
};

} // namespace hostkit
