#pragma once

#include "contracts/core/kelvar_core_api.h"

#include <QString>
#include <QStringList>

/// Finds the files that the library uses by name: fonts and images.
///
/// It has three places: one for fonts, one for images, and the user's own, which is searched first for both,
/// so that a file of the user replaces the one that came along. A place is a folder, several of them
/// separated by
/// ':', or empty for none.
class KELVAR_CORE_API OruResource
{
public:
    OruResource(const QString& fontFolders, const QString& imageFolders, const QString& userFolders);

    /// The path of a file: an absolute path as it stands, otherwise that of the first folder that has a file
    /// of this name, otherwise the name unchanged. So the answer exists or not, as QFile::exists says.
    QString fontFile(const QString& fileName) const;
    QString imageFile(const QString& fileName) const;

private:
    QStringList fontSearch_;
    QStringList imageSearch_;
};
