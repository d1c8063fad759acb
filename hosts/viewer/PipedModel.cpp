#include "hosts/viewer/PipedModel.h"

#include "hosts/viewer/StopSignals.h"

#include <QFile>

#include <array>

#include <cerrno>
#include <cstring>

#include <poll.h>
#include <unistd.h>

namespace {

/// Waits until there is something to read, or the end of it. False: a signal came first.
bool awaitInput(int descriptor, const StopSignals& stop)
{
    std::array<pollfd, 2> watched = {{{descriptor, POLLIN, 0}, {stop.descriptor(), POLLIN, 0}}};
    while (watched[0].revents == 0 && watched[1].revents == 0) {
        if (poll(watched.data(), watched.size(), -1) < 0 && errno != EINTR) {
            return true; // the read tells why
        }
    }
    return watched[1].revents == 0;
}

QString systemReason()
{
    return QString::fromLocal8Bit(std::strerror(errno));
}

} // namespace

PipedModel::PipedModel(const QString& name, const QString& suffix, qint64 mostBytes)
    : name_(name + QLatin1Char('.') + suffix)
    , mostBytes_(mostBytes)
{}

bool PipedModel::fill(int descriptor, const StopSignals& stop, QString* error) const
{
    QFile out(file());
    if (!folder_.isValid() || !out.open(QIODevice::WriteOnly | QIODevice::Unbuffered)) {
        *error = folder_.isValid() ? out.errorString() : folder_.errorString();
        return false;
    }
    std::array<char, 65536> piece;
    while (awaitInput(descriptor, stop)) {
        const ssize_t size = ::read(descriptor, piece.data(), piece.size());
        if (size <= 0) {
            *error = size < 0 ? systemReason() : QString();
            return size == 0;
        }
        if (out.size() + size > mostBytes_) {
            *error = QStringLiteral("more than %1 bytes").arg(mostBytes_);
            return false;
        }
        if (out.write(piece.data(), size) != size) {
            *error = out.errorString();
            return false;
        }
    }
    error->clear();
    return false;
}
