#pragma once

namespace Kelvar {
namespace UI {
namespace Toolkit {

/// The modifier that is held with a mouse button. The numbers are stored, so they never change; a variable
/// may hold any int.
enum KeyModifier : int
{
    ModifierNone = 0,
    ModifierFirst = 1,
    ModifierSecond = 2
};

} // namespace Toolkit
} // namespace UI
} // namespace Kelvar
