#include "hosts/host/RecordingWriter.h"

#include "hosts/host/InputEvent.h"

namespace hostkit {

RecordingWriter::RecordingWriter(const QString& file, const Recording& recording)
    : file_(file)
{
    check(file_.replace(recording.head()));
}

void RecordingWriter::write(const InputEvent& event, const QSize& view)
{
    check(file_.append(Recording::line(event, view)));
}

void RecordingWriter::check(bool written) const
{
    if (!written) {
        throw Recording::Error(file_.error().toStdString());
    }
}

} // namespace hostkit
