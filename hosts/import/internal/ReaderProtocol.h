#pragma once

namespace hostkit {

/// How IsolatedReader and the program model_reader talk to each other.
///
///     model_reader FILE SECONDS BYTES
///
/// reads FILE with that much processor time and memory; 0 bytes: no limit. It writes messages to its standard
/// output, each a Tag and its content; numbers are as they are in memory, an array is a uint64_t that counts
/// its elements, and the elements.
struct ReaderProtocol
{
    /// The end of the output without Done is a crash.
    enum class Tag : char
    {
        /// A float: the share that is done, 0 to 1.
        Share,
        /// A MeshSource: name, QRgb of the color, positions, normals, colors, indices.
        Part,
        /// Why the file cannot be read, a text.
        Error,
        Done
    };

    /// Exit code when the memory is used up.
    static constexpr int outOfMemory = 10;
};

} // namespace hostkit
