#include "hosts/import/reader/PartWriter.h"

#include <cerrno>

#include <unistd.h>

namespace hostkit {

using Tag = ReaderProtocol::Tag;

void PartWriter::share(float share) const
{
    value(Tag::Share);
    value(share);
}

void PartWriter::part(const MeshSource& part) const
{
    value(Tag::Part);
    array(part.name.toStdString());
    value(part.material.color.rgb());
    array(part.positions);
    array(part.normals);
    array(part.colors);
    array(part.indices);
}

void PartWriter::error(const std::string& reason) const
{
    value(Tag::Error);
    array(reason);
}

void PartWriter::done() const
{
    value(Tag::Done);
}

void PartWriter::bytes(const void* data, std::size_t size) const
{
    const char* at = static_cast<const char*>(data);
    while (size > 0) {
        const ssize_t written = ::write(pipe_, at, size);
        if (written < 0 && errno != EINTR) {
            ::_exit(1);
        }
        at += written > 0 ? written : 0;
        size -= static_cast<std::size_t>(written > 0 ? written : 0);
    }
}

} // namespace hostkit
