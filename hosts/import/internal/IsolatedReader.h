#pragma once

#include "hosts/mesh/MeshSource.h"
#include "hosts/mesh/Progress.h"

#include <QString>

#include <vector>

namespace hostkit {

/// Reads a model file in a process of its own, so that a damaged file that takes its reader down, or keeps it
/// busy for ever, is an error like any other, and so that reading can be stopped at any moment.
class IsolatedReader
{
public:
    /// Processor time that reading may take: that many seconds, and one more for each megabyte.
    static constexpr int secondsAllowed = 3;

    /// The parts as ModelReader gives them. Throws std::runtime_error with the reason, and
    /// Progress::Cancelled at once when `progress` was cancelled; `report` is told how far it is.
    static std::vector<MeshSource> read(const QString& file, const Progress& progress,
                                        const ReportShare& report);
};

} // namespace hostkit
