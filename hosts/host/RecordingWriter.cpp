#include "hosts/host/RecordingWriter.h"

namespace hostkit {

RecordingWriter::RecordingWriter(const QString& file, const Recording& recording)
    : file_(file)
{
    if (!file_.open(QIODevice::WriteOnly)) {
        throw Recording::Error(QStringLiteral("%1: %2").arg(file, file_.errorString()).toStdString());
    }
    append(recording.head());
}

void RecordingWriter::write(const InputEvent& event, const QSize& view)
{
    append(Recording::line(event, view));
}

void RecordingWriter::append(const QByteArray& text)
{
    if (file_.write(text) != text.size() || !file_.flush()) {
        throw Recording::Error(
            QStringLiteral("%1: %2").arg(file_.fileName(), file_.errorString()).toStdString());
    }
}

} // namespace hostkit
