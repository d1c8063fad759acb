#pragma once

#include "hosts/host/Recording.h"
#include "hosts/host/kelvar_host_api.h"

#include <QFile>

namespace hostkit {

/// Writes a recording while it happens. Every event is in the file before the scene hears of it, so a
/// recording also tells what came before a crash.
class KELVAR_HOST_API RecordingWriter
{
public:
    /// Starts `file` anew with the head of `recording`. Throws Recording::Error.
    RecordingWriter(const QString& file, const Recording& recording);

    /// Appends an event on a view of `view` pixels. Throws Recording::Error.
    void write(const InputEvent& event, const QSize& view);

private:
    void append(const QByteArray& text);

    QFile file_;
};

} // namespace hostkit
