#include "hosts/import/reader/MaterialReader.h"

#include <QColor>

#include <assimp/GltfMaterial.h>
#include <assimp/material.h>
#include <assimp/scene.h>

#include <algorithm>
#include <array>

namespace hostkit {

namespace {

const aiColor4D plainColor(0.6f, 0.6f, 0.6f, 1.0f);
const aiColor4D white(1.0f, 1.0f, 1.0f, 1.0f);

/// The color of a surface, in order of preference.
constexpr std::array<aiTextureType, 2> colorTextures = {aiTextureType_BASE_COLOR, aiTextureType_DIFFUSE};

/// Formats in which the color below a texture does not show; test models have a dark one there.
constexpr std::array<const char*, 2> formatsThatCover = {"3ds", "ase"};

float clamped(float value)
{
    return value > 0.0f ? std::min(value, 1.0f) : 0.0f;
}

Texture::Wrap wrapOf(aiTextureMapMode mode)
{
    return mode == aiTextureMapMode_Mirror ? Texture::Wrap::Mirror
           : mode == aiTextureMapMode_Wrap ? Texture::Wrap::Repeat
                                           : Texture::Wrap::Clamp;
}

/// What is seen through is a matter of the color where the file gives one with alpha, and of the opacity
/// elsewhere. Some programs write 0 for what is solid; what cannot be seen at all is of no use to anybody.
QColor colorOf(const aiMaterial& material, const aiColor4D& fallback)
{
    aiColor4D color = fallback;
    const bool base = material.Get(AI_MATKEY_BASE_COLOR, color) == AI_SUCCESS;
    float alpha = base ? color.a : 1.0f;
    if (!base) {
        material.Get(AI_MATKEY_COLOR_DIFFUSE, color);
        material.Get(AI_MATKEY_OPACITY, alpha);
        alpha = color.a > 0.0f ? alpha * color.a : alpha;
    }
    alpha = clamped(alpha);
    return QColor::fromRgbF(clamped(color.r), clamped(color.g), clamped(color.b),
                            alpha > 0.0f ? alpha : 1.0f);
}

/// False: the file does not say it.
bool readAlphaMode(const aiMaterial& material, Material& result)
{
    aiString mode;
    if (material.Get(AI_MATKEY_GLTF_ALPHAMODE, mode) != AI_SUCCESS) {
        return false;
    }
    const std::string name = mode.C_Str();
    result.alpha = name == "BLEND"  ? Material::Alpha::Blend
                   : name == "MASK" ? Material::Alpha::CutOut
                                    : Material::Alpha::Opaque;
    float cutoff = result.cutoff;
    if (material.Get(AI_MATKEY_GLTF_ALPHACUTOFF, cutoff) == AI_SUCCESS) {
        result.cutoff = clamped(cutoff);
    }
    return true;
}

Material::Alpha alphaByContent(const Material& material)
{
    if (material.color.alpha() < 255) {
        return Material::Alpha::Blend;
    }
    const auto texture =
        material.texture ? TextureReader::alphaOf(material.texture->image) : TextureReader::Alpha::None;
    return texture == TextureReader::Alpha::Degrees        ? Material::Alpha::Blend
           : texture == TextureReader::Alpha::AllOrNothing ? Material::Alpha::CutOut
                                                           : Material::Alpha::Opaque;
}

} // namespace

MaterialReader::MaterialReader(const aiScene& scene, const std::string& format, TextureReader& textures)
    : scene_(scene)
    , textures_(textures)
    , format_(format)
    , textureCovers_(std::any_of(formatsThatCover.begin(), formatsThatCover.end(),
                                 [&](const char* known) { return format == known; }))
    , entries_(scene.mNumMaterials)
{}

const MaterialReader::Entry& MaterialReader::entry(unsigned int index)
{
    std::optional<Entry>& entry = entries_.at(index);
    if (!entry) {
        entry = read(*scene_.mMaterials[index]);
    }
    return *entry;
}

MaterialReader::Entry MaterialReader::read(const aiMaterial& material)
{
    Entry entry;
    const bool textured = readTexture(material, entry);
    entry.material.color = colorOf(material, textured ? white : plainColor);
    if (textured && textureCovers_) {
        entry.material.color.setRgb(255, 255, 255, entry.material.color.alpha());
    }
    entry.alphaGiven = readAlphaMode(material, entry.material);
    if (!entry.alphaGiven) {
        entry.material.alpha = alphaByContent(entry.material);
    }
    if (entry.material.alpha == Material::Alpha::Opaque) {
        entry.material.color.setAlpha(255);
    }
    return entry;
}

/// False: it has no texture that can be used.
bool MaterialReader::readTexture(const aiMaterial& material, Entry& entry)
{
    const std::string opacity = opacityOf(material);
    for (const aiTextureType type : colorTextures) {
        aiString name;
        unsigned int channel = 0;
        std::array<aiTextureMapMode, 3> wrap = {aiTextureMapMode_Wrap, aiTextureMapMode_Wrap,
                                                aiTextureMapMode_Wrap};
        if (material.GetTexture(type, 0, &name, nullptr, &channel, nullptr, nullptr, wrap.data()) ==
            AI_SUCCESS) {
            entry.channel = channel;
            aiUVTransform transform;
            if (format_ == "gltf" && material.Get(AI_MATKEY_UVTRANSFORM(type, 0), transform) == AI_SUCCESS) {
                entry.transform = TextureTransform::ofGltf(transform);
            }
            entry.material.texture = textures_.read(name.C_Str(), opacity, wrapOf(wrap[0]), wrapOf(wrap[1]));
            return entry.material.texture != nullptr;
        }
    }
    entry.material.texture = textures_.read({}, opacity, Texture::Wrap::Repeat, Texture::Wrap::Repeat);
    return entry.material.texture != nullptr;
}

/// The picture that says how much is seen of a surface; empty: none. In other formats than OBJ it may be the
/// opposite that is bright.
std::string MaterialReader::opacityOf(const aiMaterial& material) const
{
    aiString name;
    const bool given = format_ == "obj" && material.GetTexture(aiTextureType_OPACITY, 0, &name) == AI_SUCCESS;
    return given ? name.C_Str() : std::string();
}

} // namespace hostkit
