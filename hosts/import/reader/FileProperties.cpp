#include "hosts/import/reader/FileProperties.h"

#include <QStringList>

#include <assimp/scene.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <utility>

namespace hostkit {

namespace {

constexpr int mostCharacters = 300;

/// What formats call a thing, in any case of letters, and what we do.
struct Row
{
    const char* key;
    const char* names;
};

constexpr Row rows[] = {
    {"title", "title name"},
    {"subject", "subject"},
    {"description", "description comments"},
    {"author", "author creator"},
    {"copyright", "sourceasset_copyright copyright"},
    {"license", "license licenseterms"},
    {"generator", "sourceasset_generator generator application"},
    {"formatVersion", "sourceasset_formatversion"},
    {"created", "created creationdate"},
    {"modified", "modified modificationdate"},
    {"reference", "reference identifier"},
};

template <typename T>
T contentOf(const aiMetadataEntry& entry)
{
    T value{};
    std::memcpy(&value, entry.mData, sizeof(value));
    return value;
}

/// Empty for what is no text and no number.
QString textOf(const aiMetadataEntry& entry)
{
    switch (entry.mType) {
    case AI_AISTRING:
        return QString::fromUtf8(static_cast<const aiString*>(entry.mData)->C_Str());
    case AI_INT32:
        return QString::number(contentOf<std::int32_t>(entry));
    case AI_FLOAT:
        return QString::number(contentOf<float>(entry));
    case AI_DOUBLE:
        return QString::number(contentOf<double>(entry));
    default:
        return {};
    }
}

/// The first of the names that the metadata has a text for; null metadata have none.
QString find(const aiMetadata* metadata, const QStringList& names)
{
    for (const QString& name : names) {
        for (unsigned int i = 0; metadata && i < metadata->mNumProperties; ++i) {
            if (QString::fromUtf8(metadata->mKeys[i].C_Str()).toLower() == name) {
                QString text = textOf(metadata->mValues[i]).simplified().left(mostCharacters);
                if (!text.isEmpty()) {
                    return text;
                }
            }
        }
    }
    return {};
}

/// Units by their centimeters.
struct Unit
{
    double centimeters;
    const char* name;
};

constexpr Unit units[] = {{0.1, "mm"}, {1.0, "cm"},  {10.0, "dm"},  {100.0, "m"},
                          {1e5, "km"}, {2.54, "in"}, {30.48, "ft"}, {91.44, "yd"}};

/// FBX tells its unit in centimeters. Lengths stand ahead of it, as in "3 × 2.5 cm".
QString unitOf(const aiMetadata* metadata)
{
    const QString factor = find(metadata, {QStringLiteral("unitscalefactor")});
    const double centimeters = factor.toDouble();
    constexpr double rounding = 1e-6; // of the file's floats
    const auto* const known = std::find_if(std::begin(units), std::end(units), [&](const Unit& unit) {
        return std::abs(centimeters - unit.centimeters) <= rounding * unit.centimeters;
    });
    if (known != std::end(units)) {
        return QString::fromLatin1(known->name);
    }
    return factor.isEmpty() ? QString() : QStringLiteral("\u00d7 %1 cm").arg(factor);
}

} // namespace

std::vector<std::pair<QString, QString>> FileProperties::of(const aiScene& scene)
{
    std::vector<std::pair<QString, QString>> found;
    const auto add = [&found](const char* key, const QString& value) {
        if (!value.isEmpty()) {
            found.emplace_back(QLatin1String(key), value);
        }
    };
    for (const Row& row : rows) {
        const QStringList names = QString::fromLatin1(row.names).split(QLatin1Char(' '));
        const QString ofScene = find(scene.mMetaData, names);
        add(row.key, ofScene.isEmpty() ? find(scene.mRootNode->mMetaData, names) : ofScene);
    }
    add("unit", unitOf(scene.mMetaData));
    return found;
}

} // namespace hostkit
