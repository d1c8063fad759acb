#pragma once

#include "contracts/core/kelvar_core_api.h"
#include "contracts/math/Matrix.h"

#include <QColor>

/// What a typed read yields for a matrix and a color that the store does not have: the identity and an
/// invalid color.
extern KELVAR_CORE_API const Kelvar::Math::Matrix OruMatrix0;
extern KELVAR_CORE_API const QColor QColor0;
