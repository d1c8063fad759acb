#pragma once

#include "contracts/core/kelvar_core_api.h"

#include <QByteArray>
#include <QFile>
#include <QString>

/// Writes a file so that nothing is lost: a regular file is replaced by a whole new one or stays as it was,
/// and what is no regular file (a pipe, a device) is written to and stays what it is.
///
///     OruFileWriter out(file);
///     if (!out.replace(content)) { complain(out.error()); }
class KELVAR_CORE_API OruFileWriter
{
public:
    /// Touches nothing yet.
    explicit OruFileWriter(const QString& file);

    /// Makes `content` that of the file. False: a regular file is as it was, or still missing.
    bool replace(const QByteArray& content);

    /// Adds to what replace() wrote; it is in the file, not in a buffer of the program, when this returns.
    /// False: a regular file is as it was before the call.
    bool append(const QByteArray& text);

    /// "FILE: reason" of the operation that failed last.
    const QString& error() const { return error_; }

private:
    bool replaceRegular(const QByteArray& content);
    bool open(QIODevice::OpenMode mode);
    bool fail(const QFileDevice& device);

    /// Open while more may be written to it: from the first append() on, a pipe or a device from replace()
    /// on.
    QFile out_;
    QString error_;
};
