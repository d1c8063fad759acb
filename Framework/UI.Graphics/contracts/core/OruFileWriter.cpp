#include "contracts/core/OruFileWriter.h"

#include <QFileInfo>
#include <QSaveFile>

namespace {

/// The device has no buffer. A write that stops in the middle has no reason yet: the one after it has.
bool writeAll(QFileDevice& device, const QByteArray& content)
{
    qint64 done = 0;
    while (done < content.size()) {
        const qint64 written = device.write(content.constData() + done, content.size() - done);
        if (written <= 0) {
            return false;
        }
        done += written;
    }
    return true;
}

} // namespace

OruFileWriter::OruFileWriter(const QString& file)
    : out_(file)
{}

bool OruFileWriter::replace(const QByteArray& content)
{
    out_.close();
    const QFileInfo target(out_.fileName());
    if (target.exists() && !target.isFile()) {
        return open(QIODevice::WriteOnly) && (writeAll(out_, content) || fail(out_));
    }
    return replaceRegular(content);
}

bool OruFileWriter::append(const QByteArray& text)
{
    if (!out_.isOpen() && !open(QIODevice::Append)) {
        return false;
    }
    const qint64 before = out_.size();
    if (writeAll(out_, text)) {
        return true;
    }
    fail(out_);
    out_.resize(before); // half a line would spoil what is there; a pipe has no end to take back
    return false;
}

bool OruFileWriter::replaceRegular(const QByteArray& content)
{
    // Unbuffered: what a buffer holds is written by commit(), which replaces the file even if that fails.
    QSaveFile file(out_.fileName());
    return (file.open(QIODevice::WriteOnly | QIODevice::Unbuffered) && writeAll(file, content) &&
            file.commit()) ||
           fail(file);
}

bool OruFileWriter::open(QIODevice::OpenMode mode)
{
    return out_.open(mode | QIODevice::Unbuffered | QIODevice::ExistingOnly) || fail(out_);
}

bool OruFileWriter::fail(const QFileDevice& device)
{
    error_ = out_.fileName() + QLatin1String(": ") + device.errorString();
    return false;
}
