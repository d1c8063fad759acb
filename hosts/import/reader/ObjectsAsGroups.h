#pragma once

#include <QString>

#include <assimp/IOStream.hpp>

#include <cstddef>
#include <memory>
#include <optional>
#include <vector>

namespace hostkit {

/// An OBJ file of many objects, told to assimp with `g` in place of `o`.
///
/// For each `o` assimp compares the name with those of all objects before it, which takes half a minute for
/// 100 000 of them. A group becomes an object, too, and is looked up at once. The same comes of both where a
/// name appears for the first time, in a file without groups of its own: only there a letter is replaced.
class ObjectsAsGroups : public Assimp::IOStream
{
public:
    /// `file` is the open file `name`; null is given back, and so is any file but one in OBJ.
    static std::unique_ptr<IOStream> in(const QString& name, std::unique_ptr<IOStream> file);

    std::size_t Read(void* buffer, std::size_t size, std::size_t count) override;
    std::size_t Write(const void* buffer, std::size_t size, std::size_t count) override;
    aiReturn Seek(std::size_t offset, aiOrigin origin) override;
    std::size_t Tell() const override;
    std::size_t FileSize() const override;
    void Flush() override;

private:
    ObjectsAsGroups(const QString& name, std::unique_ptr<IOStream> file);

    QString name_;
    std::unique_ptr<IOStream> file_;
    /// Where the letters are, in ascending order. Looked for when the file is read: assimp opens it more
    /// often.
    std::optional<std::vector<std::size_t>> replaced_;
};

} // namespace hostkit
