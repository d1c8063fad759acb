#include "hosts/import/reader/Notes.h"

#include "hosts/import/internal/ReaderProtocol.h"

namespace hostkit {

void Notes::add(const QString& line)
{
    if (lines_.contains(line)) {
        return;
    }
    if (lines_.size() + 1 < ReaderProtocol::mostNotes) {
        lines_.append(line);
    } else {
        ++more_;
    }
}

QStringList Notes::lines() const
{
    QStringList all = lines_;
    if (more_ > 0) {
        all.append(QStringLiteral("and %1 more of that kind").arg(more_));
    }
    return all;
}

} // namespace hostkit
