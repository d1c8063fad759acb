#pragma once

#include "contracts/core/OruPropertyKind.h"

namespace oru {

/// Places in a viewport as Qt::AlignmentFlag values; other combinations of those flags are good, too.
inline constexpr OruPropertyKind::Choice alignmentWords[] = {
    {"33", "top left"}, {"36", "top"},         {"34", "top right"}, {"129", "left"},        {"132", "center"},
    {"130", "right"},   {"65", "bottom left"}, {"68", "bottom"},    {"66", "bottom right"},
};
/// The kind of a property that says where in a viewport something lies.
inline constexpr OruPropertyKind alignmentKind =
    OruPropertyKind::of<int>().from(0).to(0x1ff).naming(alignmentWords);

} // namespace oru
