#pragma once

#include "hosts/import/internal/ReaderProtocol.h"
#include "hosts/mesh/MeshSource.h"

#include <cstddef>
#include <cstdint>
#include <string>

namespace hostkit {

/// The messages of ReaderProtocol, written to a pipe. Without a reader at its other end the process ends.
class PartWriter
{
public:
    /// `pipe` is borrowed.
    explicit PartWriter(int pipe)
        : pipe_(pipe)
    {}

    void share(float share) const;
    void part(const MeshSource& part) const;
    void error(const std::string& reason) const;
    void done() const;

private:
    void bytes(const void* data, std::size_t size) const;

    template <typename T>
    void value(const T& value) const
    {
        bytes(&value, sizeof(value));
    }

    template <typename Array>
    void array(const Array& array) const
    {
        value(static_cast<std::uint64_t>(array.size()));
        bytes(array.data(), array.size() * sizeof(*array.data()));
    }

    int pipe_;
};

} // namespace hostkit
