#include "hosts/import/reader/RegularFiles.h"

#include "contracts/core/OruFileReader.h"

#include <QFile>

namespace hostkit {

bool RegularFiles::Exists(const char* file) const
{
    return OruFileReader::refusal(QFile::decodeName(file)).isEmpty() && DefaultIOSystem::Exists(file);
}

Assimp::IOStream* RegularFiles::Open(const char* file, const char* mode)
{
    const QString refusal = OruFileReader::refusal(QFile::decodeName(file));
    if (refusal.isEmpty()) {
        return DefaultIOSystem::Open(file, mode);
    }
    if (refused_.empty()) {
        refused_ = std::string(file) + ' ' + refusal.toStdString();
    }
    return nullptr;
}

} // namespace hostkit
