#include "hosts/import/reader/ModelWriter.h"

#include <QColor>
#include <QImage>

#include <cerrno>

#include <unistd.h>

namespace hostkit {

namespace {

constexpr std::size_t mostGathered = 65536;
constexpr float shareWorthTelling = 0.01f;

} // namespace

void ModelWriter::share(float share)
{
    if (share < shareTold_ + shareWorthTelling) {
        return;
    }
    shareTold_ = share;
    value(Tag::Share);
    value(share);
    flush();
}

std::uint32_t ModelWriter::mesh(const MeshSource& mesh)
{
    const Material& material = mesh.material;
    const std::uint32_t texture = material.texture ? numberOf(material.texture) : ReaderProtocol::noTexture;
    value(Tag::Mesh);
    text(mesh.name);
    value(mesh.primitive);
    value(material.color.rgba());
    value(texture);
    value(material.alpha);
    value(material.cutoff);
    array(mesh.positions);
    array(mesh.normals);
    array(mesh.colors);
    array(mesh.texturePoints);
    array(mesh.indices);
    return meshes_++;
}

std::uint32_t ModelWriter::numberOf(const std::shared_ptr<const Texture>& texture)
{
    const auto [at, fresh] = textures_.emplace(texture, static_cast<std::uint32_t>(textures_.size()));
    if (fresh) {
        this->texture(*texture);
    }
    return at->second;
}

void ModelWriter::texture(const Texture& texture)
{
    const bool alpha = texture.image.hasAlphaChannel();
    const QImage image =
        texture.image.convertToFormat(alpha ? QImage::Format_RGBA8888 : QImage::Format_RGBX8888);
    value(Tag::Texture);
    text(texture.name);
    value(texture.wrapS);
    value(texture.wrapT);
    value(static_cast<std::uint32_t>(image.width()));
    value(static_cast<std::uint32_t>(image.height()));
    value(static_cast<std::uint8_t>(alpha));
    for (int row = 0; row < image.height(); ++row) {
        bytes(image.constScanLine(row), static_cast<std::size_t>(image.width()) * 4);
    }
}

std::uint32_t ModelWriter::node(const ModelSource::Node& node)
{
    value(Tag::Node);
    value(node.parent);
    text(node.name);
    return nodes_++;
}

void ModelWriter::use(const ModelSource::Use& use)
{
    value(Tag::Use);
    value(use.node);
    value(use.mesh);
    text(use.name);
    value(use.placement);
}

void ModelWriter::frame(UpAxis up, const Origin& origin)
{
    value(Tag::Frame);
    value(up.direction());
    value(origin);
}

void ModelWriter::property(const QString& key, const QString& content)
{
    value(Tag::Property);
    text(key);
    text(content);
}

void ModelWriter::note(const QString& line)
{
    value(Tag::Note);
    text(line);
}

void ModelWriter::error(const std::string& reason)
{
    value(Tag::Error);
    array(reason);
    flush();
}

void ModelWriter::done()
{
    value(Tag::Done);
    flush();
}

void ModelWriter::bytes(const void* data, std::size_t size)
{
    const char* const from = static_cast<const char*>(data);
    if (gathered_.size() + size > mostGathered) {
        flush();
    }
    if (size > mostGathered) {
        send(from, size);
    } else {
        gathered_.insert(gathered_.end(), from, from + size);
    }
}

void ModelWriter::flush()
{
    send(gathered_.data(), gathered_.size());
    gathered_.clear();
}

void ModelWriter::send(const char* data, std::size_t size) const
{
    while (size > 0) {
        const ssize_t written = ::write(pipe_, data, size);
        if (written < 0 && errno != EINTR) {
            ::_exit(1);
        }
        data += written > 0 ? written : 0;
        size -= static_cast<std::size_t>(written > 0 ? written : 0);
    }
}

} // namespace hostkit
