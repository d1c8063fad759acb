#pragma once

#include "contracts/core/OruFileWriter.h"
#include "hosts/host/Recording.h"
#include "hosts/host/kelvar_host_api.h"

namespace hostkit {

/// Writes a recording while it happens. Every event is in the file before the scene hears of it, so a
/// recording also tells what came before a crash.
class KELVAR_HOST_API RecordingWriter
{
public:
    /// Starts `file` anew with the head of `recording`. Throws Recording::Error; the file is then as it was.
    RecordingWriter(const QString& file, const Recording& recording);

    /// Appends an event on a view of `view` pixels. Throws Recording::Error; the file then ends with the
    /// event before.
    void write(const InputEvent& event, const QSize& view);

private:
    void check(bool written) const;

    OruFileWriter file_;
};

} // namespace hostkit
