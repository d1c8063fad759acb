#include "contracts/core/OruFileReader.h"

#include <QFile>
#include <QFileInfo>

QString OruFileReader::refusal(const QString& file)
{
    const QFileInfo info(file);
    if (info.isDir()) {
        return QStringLiteral("is a folder");
    }
    return info.exists() && !info.isFile() ? QStringLiteral("is not a regular file") : QString();
}

bool OruFileReader::read(const QString& file, qint64 mostBytes, QByteArray& content, QString& reason)
{
    // Before the file is opened: to open a pipe blocks.
    reason = refusal(file);
    if (!reason.isEmpty()) {
        return false;
    }
    QFile in(file);
    if (!in.open(QIODevice::ReadOnly)) {
        reason = in.errorString();
        return false;
    }
    // Never trust the size alone: a growing file has more than it says. Piece by piece, since a read makes
    // room for as much as it is asked for.
    constexpr int pieceBytes = 1 << 16;
    QByteArray piece;
    content.clear();
    do {
        piece = in.read(pieceBytes);
        content += piece;
    } while (!piece.isEmpty() && content.size() <= mostBytes);
    if (in.error() != QFile::NoError) {
        reason = in.errorString();
        return false;
    }
    return content.size() <= mostBytes;
}
