#pragma once

#include "contracts/math/Matrix.h"
#include "contracts/math/Vector3.h"
#include "contracts/ogl/OruOglViewport.h"

#include <QColor>

#include <vector>

namespace hostkit {

/// Plain lines over a scene that has been drawn, with a dark rim to be seen on bright surfaces, too: whole
/// where nothing is in front of them, thin and dim where they are hidden.
class MeasureLines
{
public:
    /// `width` in pixels, without the rim.
    MeasureLines(const QColor& color, float width);

    /// Two ends a line, in the frame that the loaded matrices take to the window; the state is that of the
    /// transparent objects of a 3D pass.
    void draw(const std::vector<Kelvar::Math::Vector3>& ends, const Kelvar::Math::Matrix& projection,
              const OruOglViewport& viewport) const;

private:
    QColor color_;
    float width_;
};

} // namespace hostkit
