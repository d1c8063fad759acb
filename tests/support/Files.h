#pragma once

#include <QFile>
#include <QString>

namespace kelvartest {

/// Empty if there is no such file.
inline QByteArray contentOf(const QString& name)
{
    QFile file(name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace kelvartest
