#pragma once

#include <assimp/DefaultIOSystem.h>

#include <string>

namespace hostkit {

/// The files that assimp may open: regular ones only. A model may name a pipe or a device, which would block
/// its reader or never end.
class RegularFiles : public Assimp::DefaultIOSystem
{
public:
    bool Exists(const char* file) const override;
    Assimp::IOStream* Open(const char* file, const char* mode) override;

    /// The first name that was to be opened and must not be, and why; empty: none.
    const std::string& refused() const { return refused_; }

private:
    std::string refused_;
};

} // namespace hostkit
