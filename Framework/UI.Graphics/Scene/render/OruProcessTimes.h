#pragma once

#include "Scene/kelvar_scene_api.h"

#include <QString>

#include <cstdint>

/// The CPU time that the process, all its threads together, has used up to the moment of construction.
///
/// Taken at the start of a draw, it tells at the end what the frame cost. CPU time, not elapsed time.
class KELVAR_SCENE_API OruProcessTimes
{
public:
    /// Takes the process's times of this moment.
    OruProcessTimes();

    /// Time in kernel mode and in user mode, each in ticks of 100 ns.
    std::int64_t kernelTime;
    std::int64_t userTime;

    /// What has been used since this snapshot, as a frame rate, with the memory that is available.
    QString performanceText() const;

    /// The frame rate of a frame that took `seconds` of CPU time; 0 counts as 100 frames a second.
    static QString frameRateText(double seconds);
};
