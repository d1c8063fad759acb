#pragma once

#include <cstddef>
#include <cstdint>

namespace hostkit {

/// How IsolatedReader and the program model_reader talk to each other.
///
///     model_reader FILE SECONDS BYTES
///
/// reads FILE with that much processor time and memory; 0 bytes: no limit. It writes messages to its standard
/// output, each a Tag and its content; numbers are as they are in memory, an array is a uint64_t that counts
/// its elements, and the elements; a text is an array of UTF-8. What is counted counts from 0 in the order of
/// the messages, and comes ahead of what names it.
struct ReaderProtocol
{
    /// The end of the output without Done is a crash.
    enum class Tag : char
    {
        /// A float: the share that is done, 0 to 1.
        Share,
        /// Name, Wrap along s and t, uint32_t width and height, bool whether there is alpha; rows of pixels
        /// from the top: bytes red, green, blue, alpha.
        Texture,
        /// A MeshSource: name, Primitive; of its material QRgb, uint32_t texture or noTexture, Alpha, float
        /// cutoff; positions, normals, colors, texture points, indices.
        Mesh,
        /// uint32_t of the node above, name. Node 0 is the model itself and has no message.
        Node,
        /// uint32_t node and mesh, name, Matrix.
        Use,
        /// UpAxis, three doubles of the origin.
        Frame,
        /// Key and value, two texts.
        Property,
        /// A text.
        Note,
        /// Why the file cannot be read, a text.
        Error,
        Done
    };

    static constexpr std::uint32_t noTexture = 0xffffffff;

    /// Levels of nodes below the model, and lines that are told.
    static constexpr unsigned int mostLevels = 32;
    static constexpr int mostNotes = 20;

    /// Pixels on a side of a texture.
    static constexpr int largestSide = 16384;

    /// Exit code when the memory is used up.
    static constexpr int outOfMemory = 10;
};

} // namespace hostkit
