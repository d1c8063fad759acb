#pragma once

#include <string>
#include <vector>

namespace kelvartest {

/// The GL state that a host might mind, one "name value" line each: capabilities, modes, bindings, matrices,
/// current color, pixel store and transfer, stack depths, client arrays.
std::string glStateText();

/// Puts a host's state that spoils flat drawing in every way that the flat state undoes: lighting, red
/// textures of every target in several units with generated coordinates, texture matrices, a sampler object,
/// a shader program, a program pipeline, ARB programs, fog, tests that fail, odd blending, culling, stipples,
/// logic operation, clipping. Each of them does by itself.
class HostileState
{
public:
    HostileState();
    ~HostileState();
    HostileState(const HostileState&) = delete;
    HostileState& operator=(const HostileState&) = delete;

private:
    void bindTextures();
    void bindPrograms();

    std::vector<unsigned int> textures_;
    unsigned int sampler_ = 0;
    unsigned int program_ = 0;
    unsigned int pipeline_ = 0;
    unsigned int arbPrograms_[2] = {0, 0};
};

} // namespace kelvartest
