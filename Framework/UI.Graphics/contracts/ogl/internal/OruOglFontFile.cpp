#include "contracts/ogl/internal/OruOglFontFile.h"

#include "contracts/core/OruResource.h"

#include <QFile>
#include <QFileInfo>

#include <fontconfig/fontconfig.h>

#include <initializer_list>
#include <memory>

namespace oru {

namespace {

struct PatternDeleter
{
    void operator()(FcPattern* pattern) const { FcPatternDestroy(pattern); }
};
using Pattern = std::unique_ptr<FcPattern, PatternDeleter>;

const FcChar8* fcText(const char* text)
{
    return reinterpret_cast<const FcChar8*>(text);
}

/// The best match for the families, in this order of preference; null where there is no font at all.
Pattern bestMatch(std::initializer_list<const char*> families)
{
    Pattern wanted(FcPatternCreate());
    for (const char* family : families) {
        FcPatternAddString(wanted.get(), FC_FAMILY, fcText(family));
    }
    FcPatternAddBool(wanted.get(), FC_SCALABLE, FcTrue);
    FcConfigSubstitute(nullptr, wanted.get(), FcMatchPattern);
    FcDefaultSubstitute(wanted.get());
    FcResult result = FcResultNoMatch;
    return Pattern(FcFontMatch(nullptr, wanted.get(), &result));
}

bool isOfFamily(const Pattern& font, const QString& family)
{
    FcChar8* name = nullptr;
    for (int i = 0; FcPatternGetString(font.get(), FC_FAMILY, i, &name) == FcResultMatch; ++i) {
        if (QString::fromUtf8(reinterpret_cast<const char*>(name)).compare(family, Qt::CaseInsensitive) ==
            0) {
            return true;
        }
    }
    return false;
}

FontFile fileOf(const Pattern& font)
{
    FcChar8* path = nullptr;
    FontFile file;
    if (font && FcPatternGetString(font.get(), FC_FILE, 0, &path) == FcResultMatch) {
        file.path = QFile::decodeName(reinterpret_cast<const char*>(path));
        FcPatternGetInteger(font.get(), FC_INDEX, 0, &file.index);
    }
    return file;
}

} // namespace

FontFile defaultFontFile()
{
    return fileOf(bestMatch({"DejaVu Sans", "sans-serif"}));
}

FontFile findFontFile(const OruResource& resource, const QString& face)
{
    if (face.isEmpty() || face == QLatin1String(defaultFace)) {
        return defaultFontFile();
    }
    const QString path = resource.fontFile(face);
    if (QFileInfo(path).isFile()) {
        return {path, 0};
    }
    const Pattern font = bestMatch({face.toUtf8().constData()});
    return font && isOfFamily(font, face) ? fileOf(font) : defaultFontFile();
}

} // namespace oru
