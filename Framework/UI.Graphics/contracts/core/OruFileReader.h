#pragma once

#include "contracts/core/kelvar_core_api.h"

#include <QByteArray>
#include <QString>

/// Reads whole files, but none that could block or never end.
struct KELVAR_CORE_API OruFileReader
{
    /// Why a file is not one to be opened: it is a folder, or a pipe, a device or the like. Empty if nothing
    /// speaks against it, also when there is no such file.
    static QString refusal(const QString& file);

    /// The content of a regular file of `mostBytes` at most. False: `content` is not to be used, `reason`
    /// says why, without the file's name. One that is too large gives as much as shows it, and an empty
    /// reason.
    static bool read(const QString& file, qint64 mostBytes, QByteArray& content, QString& reason);
};
