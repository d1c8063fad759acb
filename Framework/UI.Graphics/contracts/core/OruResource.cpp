#include "contracts/core/OruResource.h"

#include <QDir>
#include <QFileInfo>

namespace {

QStringList folders(const QString& place)
{
    QStringList result = place.split(QLatin1Char(':'));
    result.removeAll(QString());
    return result;
}

QString firstHit(const QStringList& search, const QString& fileName)
{
    if (fileName.isEmpty() || QFileInfo(fileName).isAbsolute()) {
        return fileName;
    }
    for (const QString& folder : search) {
        const QFileInfo candidate(QDir(folder), fileName);
        if (candidate.isFile()) {
            return candidate.absoluteFilePath();
        }
    }
    return fileName;
}

} // namespace

OruResource::OruResource(const QString& fontFolders, const QString& imageFolders, const QString& userFolders)
    : fontSearch_(folders(userFolders) + folders(fontFolders))
    , imageSearch_(folders(userFolders) + folders(imageFolders))
{}

QString OruResource::fontFile(const QString& fileName) const
{
    return firstHit(fontSearch_, fileName);
}

QString OruResource::imageFile(const QString& fileName) const
{
    return firstHit(imageSearch_, fileName);
}
