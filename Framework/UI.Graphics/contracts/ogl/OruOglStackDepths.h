#pragma once

#include "contracts/ogl/kelvar_ogl_api.h"

/// The depths of the attribute, model view and projection stacks and the matrix mode at one moment.
///
/// Taken before foreign code runs; when that code left by an exception, restore() takes off what it pushed
/// and did not pop. A value; needs the same current context for both.
class KELVAR_OGL_API OruOglStackDepths
{
public:
    /// Asks OpenGL for the depths. Not between glBegin and glEnd.
    OruOglStackDepths();

    /// Pops each stack down to the recorded depth and sets the recorded matrix mode. Closes a glBegin that is
    /// still open. A stack that is lower than recorded stays as it is. Raises no GL error.
    void restore() const;

private:
    int attributes_ = 0;
    int modelView_ = 0;
    int projection_ = 0;
    int matrixMode_ = 0;
};
