#pragma once

#include "contracts/core/kelvar_core_api.h"

#include <QString>

#include <cstdint>

namespace oru {

/// The memory, in bytes, that the kernel calls available for new work, without swapping; 0 where it does not
/// say.
KELVAR_CORE_API std::uint64_t memoryAvailable();

/// The same in a form people read: "11.4 GiB", or "unknown".
KELVAR_CORE_API QString memoryInfo();

/// A number of bytes in the largest binary unit that leaves at least 1, with one decimal: "640.0 KiB"; whole
/// bytes below 1 KiB: "12 B".
KELVAR_CORE_API QString memoryText(std::uint64_t bytes);

} // namespace oru
