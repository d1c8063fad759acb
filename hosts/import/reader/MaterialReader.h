#pragma once

#include "hosts/import/reader/TextureReader.h"
#include "hosts/import/reader/TextureTransform.h"
#include "hosts/mesh/Material.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

struct aiMaterial;
struct aiScene;

namespace hostkit {

/// The materials of a scene, each read when it is first asked for.
class MaterialReader
{
public:
    struct Entry
    {
        Material material;
        /// The file says what alpha means; else it is as colors and texture have it.
        bool alphaGiven = false;
        /// Which texture coordinates of a mesh the texture goes by.
        unsigned int channel = 0;
        /// From those to the picture.
        TextureTransform transform;
    };

    /// Both are borrowed. `format` is the first suffix that assimp gives the reader which read `scene`.
    MaterialReader(const aiScene& scene, const std::string& format, TextureReader& textures);

    const Entry& entry(unsigned int index);

private:
    Entry read(const aiMaterial& material);
    bool readTexture(const aiMaterial& material, Entry& entry);
    std::string opacityOf(const aiMaterial& material) const;

    const aiScene& scene_;
    TextureReader& textures_;
    std::string format_;
    /// A texture takes the place of the color instead of being multiplied with it.
    bool textureCovers_;
    std::vector<std::optional<Entry>> entries_;
};

} // namespace hostkit
