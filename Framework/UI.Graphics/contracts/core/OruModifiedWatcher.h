#pragma once

#include "contracts/core/OruModified.h"
#include "contracts/core/OruViewPtr.h"
#include "contracts/core/kelvar_core_api.h"

#include <cstdint>

/// Remembers how far a reader has seen the changes of a node and of all that lies below it.
///
/// Each reader has a watcher of its own; both questions cost O(1). A new watcher reports a change. A watcher
/// that outlives its node reports none.
class KELVAR_CORE_API OruModifiedWatcher
{
public:
    explicit OruModifiedWatcher(const OruModified& node);

    /// True when the node or something below it changed since the last reset().
    bool modified() const;

    /// Takes everything up to now as seen.
    void reset() const;

private:
    oru::view_ptr<const OruModified> node_;
    mutable std::uint64_t seen_ = 0;
};
