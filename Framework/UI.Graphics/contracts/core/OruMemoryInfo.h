#pragma once

#include "contracts/core/kelvar_core_api.h"

#include <QString>

#include <cstdint>

namespace oru {

/// The memory that the kernel calls available for new work, without swapping, in a form people read: "11.4
/// GiB". "unknown" where the kernel does not say.
KELVAR_CORE_API QString memoryInfo();

/// A number of bytes in the largest binary unit that leaves at least 1, with one decimal: "640.0 KiB"; whole
/// bytes below 1 KiB: "12 B".
KELVAR_CORE_API QString memoryText(std::uint64_t bytes);

} // namespace oru
