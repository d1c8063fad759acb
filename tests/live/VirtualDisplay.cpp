#include "tests/live/VirtualDisplay.h"

#include <cstdio>
#include <cstdlib>

namespace kelvartest {

constexpr int startMilliseconds = 60000;

VirtualDisplay::VirtualDisplay()
{
    server_.setProcessChannelMode(QProcess::SeparateChannels);
    server_.setStandardErrorFile(QProcess::nullDevice());
    server_.start(QStringLiteral("Xvfb"),
                  {QStringLiteral("-displayfd"), QStringLiteral("1"), QStringLiteral("-screen"),
                   QStringLiteral("0"), QStringLiteral("1024x768x24"), QStringLiteral("-nolisten"),
                   QStringLiteral("tcp")});
    QByteArray number;
    while (!number.endsWith('\n')) {
        if (!server_.waitForReadyRead(startMilliseconds)) {
            std::fputs("there is no Xvfb\n", stderr);
            std::exit(EXIT_FAILURE);
        }
        number += server_.readAllStandardOutput();
    }
    qputenv("DISPLAY", ":" + number.trimmed());
}

VirtualDisplay::~VirtualDisplay()
{
    server_.terminate();
    server_.waitForFinished();
}

} // namespace kelvartest
