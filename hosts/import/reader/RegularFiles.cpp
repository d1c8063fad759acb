#include "hosts/import/reader/RegularFiles.h"

#include "contracts/core/OruFileReader.h"
#include "hosts/import/reader/ObjectsAsGroups.h"

#include <QFile>

#include <memory>
#include <utility>

namespace hostkit {

bool RegularFiles::Exists(const char* file) const
{
    return OruFileReader::refusal(QFile::decodeName(file)).isEmpty() && DefaultIOSystem::Exists(file);
}

Assimp::IOStream* RegularFiles::Open(const char* file, const char* mode)
{
    const QString name = QFile::decodeName(file);
    const QString refusal = OruFileReader::refusal(name);
    if (refusal.isEmpty()) {
        std::unique_ptr<Assimp::IOStream> opened(DefaultIOSystem::Open(file, mode));
        return ObjectsAsGroups::in(name, std::move(opened)).release();
    }
    if (refused_.empty()) {
        refused_ = std::string(file) + ' ' + refusal.toStdString();
    }
    return nullptr;
}

} // namespace hostkit
