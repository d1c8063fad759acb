#pragma once

#include "hosts/import/reader/Notes.h"
#include "hosts/mesh/Texture.h"

#include <QDir>
#include <QHash>
#include <QImage>
#include <QString>

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

struct aiScene;
struct aiTexture;

namespace hostkit {

/// The pictures that a model's materials name: embedded ones, and files.
///
/// A file is looked for where the model says; a name from the machine of its maker is looked for beside the
/// model and in the folders there that are usual for pictures, with its upper and lower case as it is or in
/// any other way. Only regular files are opened.
class TextureReader
{
public:
    /// Scene and notes are borrowed. `mostBytes` is what all pictures together may take; 0: no limit.
    TextureReader(const aiScene& scene, const QString& modelFile, std::uint64_t mostBytes, Notes& notes);

    /// The picture `color` of the model, the same object each time. Null, and a note: there is none, or it
    /// cannot be used.
    ///
    /// A picture `opacity` takes the place of its alpha: by its own alpha, or its brightness where all of
    /// it is opaque. Empty, or one that cannot be used: all stays as it is. Without a `color` it lies on
    /// white.
    std::shared_ptr<const Texture> read(const std::string& color, const std::string& opacity,
                                        Texture::Wrap wrapS, Texture::Wrap wrapT);

    /// Whether all pixels are opaque or none, which says what alpha is for.
    enum class Alpha
    {
        None,
        AllOrNothing,
        Degrees
    };
    static Alpha alphaOf(const QImage& image);

private:
    using Key = std::tuple<std::string, std::string, Texture::Wrap, Texture::Wrap>;

    QImage image(const std::string& name);
    QImage joined(const std::string& color, const std::string& opacity);
    QImage embedded(const aiTexture& texture, QString& reason) const;
    QImage decoded(const QByteArray& content, const QByteArray& suffix, QString& reason) const;
    QString find(const QString& name);
    const std::vector<QDir>& folders();
    bool takes(const QImage& image);
    void leaveOut(const std::string& name, const QString& reason);

    const aiScene& scene_;
    QDir home_;
    std::uint64_t bytesLeft_;
    Notes& notes_;
    std::optional<std::vector<QDir>> folders_;
    std::map<std::string, QImage> images_;
    std::map<Key, std::shared_ptr<const Texture>> textures_;
};

} // namespace hostkit
