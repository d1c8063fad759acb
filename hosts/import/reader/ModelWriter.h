#pragma once

#include "hosts/import/internal/ModelSource.h"
#include "hosts/import/internal/ReaderProtocol.h"
#include "hosts/mesh/MeshSource.h"
#include "hosts/mesh/Texture.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

namespace hostkit {

/// The messages of ReaderProtocol, written to a pipe. Without a reader at its other end the process ends.
///
/// What comes in small pieces is gathered; done() and error() send all of it.
class ModelWriter
{
public:
    /// `pipe` is borrowed.
    explicit ModelWriter(int pipe)
        : pipe_(pipe)
    {}
    ModelWriter(const ModelWriter&) = delete;
    ModelWriter& operator=(const ModelWriter&) = delete;

    /// Sent at once, if it is worth telling.
    void share(float share);

    /// Writes the texture ahead of the first mesh that uses it. Returns the number of the mesh.
    std::uint32_t mesh(const MeshSource& mesh);

    /// Returns the number of the node.
    std::uint32_t node(const ModelSource::Node& node);
    void use(const ModelSource::Use& use);
    void frame(UpAxis up, const Origin& origin);
    void property(const QString& key, const QString& value);
    void note(const QString& line);
    void error(const std::string& reason);
    void done();

private:
    using Tag = ReaderProtocol::Tag;

    std::uint32_t numberOf(const std::shared_ptr<const Texture>& texture);
    void texture(const Texture& texture);
    void bytes(const void* data, std::size_t size);
    void send(const char* data, std::size_t size) const;
    void flush();

    template <typename T>
    void value(const T& value)
    {
        bytes(&value, sizeof(value));
    }

    template <typename Array>
    void array(const Array& array)
    {
        value(static_cast<std::uint64_t>(array.size()));
        bytes(array.data(), array.size() * sizeof(*array.data()));
    }

    void text(const QString& text) { array(text.toStdString()); }

    int pipe_;
    std::vector<char> gathered_;
    float shareTold_ = 0.0f;
    std::uint32_t meshes_ = 0;
    /// The model itself is one, too.
    std::uint32_t nodes_ = 1;
    std::unordered_map<std::shared_ptr<const Texture>, std::uint32_t> textures_;
};

} // namespace hostkit
