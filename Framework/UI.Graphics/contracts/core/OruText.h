#pragma once

#include "contracts/core/kelvar_core_api.h"
#include "contracts/math/Matrix.h"

#include <QColor>
#include <QString>

/// The text forms of values, as the property store keeps them. None depends on the locale, and each reads
/// back bit for bit.
///
/// Numbers: the shortest decimal form that reads back to the same bits, "nan", "inf" or "-inf".
/// Flags: "true" and "false"; "1" and "0" are read too.
/// Colors: "#aarrggbb" for RGB of 8 bits a channel; else the model (rgb, hsv, cmyk, hsl or extended) and
/// five words of four hexadecimal digits: alpha, then the channels as QColor stores them. An invalid color
/// is empty.
/// "#rrggbb" and the SVG names are read too.
/// Matrices: 16 numbers separated by blanks, row by row.
namespace oru {

KELVAR_CORE_API QString toString(bool value);
KELVAR_CORE_API QString toString(int value);
KELVAR_CORE_API QString toString(float value);
KELVAR_CORE_API QString toString(double value);
KELVAR_CORE_API QString toString(const QColor& value);
KELVAR_CORE_API QString toString(const Kelvar::Math::Matrix& value);

/// Reads the whole of `text`, blanks round it aside. False: it does not parse, and `value` is unchanged.
KELVAR_CORE_API bool fromString(const QString& text, bool& value);
KELVAR_CORE_API bool fromString(const QString& text, int& value);
KELVAR_CORE_API bool fromString(const QString& text, float& value);
KELVAR_CORE_API bool fromString(const QString& text, double& value);
KELVAR_CORE_API bool fromString(const QString& text, QColor& value);
KELVAR_CORE_API bool fromString(const QString& text, Kelvar::Math::Matrix& value);

} // namespace oru
