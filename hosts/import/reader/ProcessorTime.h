#pragma once

#include <QString>

namespace hostkit {

/// The processor time that this process has left.
struct ProcessorTime
{
    /// Allows one more second for each megabyte of a file that a model names, once for each file.
    static void allowFor(const QString& file, qint64 bytes);
};

} // namespace hostkit
