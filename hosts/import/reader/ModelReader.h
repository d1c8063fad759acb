#pragma once

#include <QString>

#include <cstdint>

namespace hostkit {

class ModelWriter;

/// Reads a model file by the assimp library.
///
/// Some of that library's readers crash or never end on damaged files: IsolatedReader is the one to use.
class ModelReader
{
public:
    /// Writes what ModelSource holds, all but the end. `mostTextureBytes` is what the pictures of the model
    /// may take; 0: no limit. Throws std::runtime_error with the reason. What assimp has made of the file
    /// stays in memory: for a process that reads one model and ends.
    static void read(const QString& file, std::uint64_t mostTextureBytes, ModelWriter& out);
};

} // namespace hostkit
