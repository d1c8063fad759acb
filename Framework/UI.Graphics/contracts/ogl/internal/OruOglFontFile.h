#pragma once

#include <QString>

class OruResource;

namespace oru {

/// The face that asks for the font that stands in.
inline constexpr char defaultFace[] = "_default_";

/// A font file and the number of the face in it; an empty path: none.
struct FontFile
{
    QString path;
    int index = 0;
};

/// The font that stands in where none is asked for, or where the one asked for is not to be had: DejaVu Sans,
/// or else what fontconfig gives as sans serif.
FontFile defaultFontFile();

/// The file that `face` names, a file that `resource` finds ahead of a family of that name. fontconfig
/// answers any family with some font: only an answer of the family that was asked for counts.
FontFile findFontFile(const OruResource& resource, const QString& face);

} // namespace oru
