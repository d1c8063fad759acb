#pragma once

#include <string>

namespace kelvartest {

/// The GL state that a host might mind, one "name value" line each: capabilities, modes, bindings, matrices,
/// current colour, pixel store and transfer, stack depths, client arrays.
std::string glStateText();

/// Puts a host's state that spoils flat drawing in every way that the flat state undoes: lighting, a red
/// texture with generated coordinates, fog, tests that fail, odd blending, culling, stipples, logic
/// operation, clipping.
class HostileState
{
public:
    HostileState();
    ~HostileState();
    HostileState(const HostileState&) = delete;
    HostileState& operator=(const HostileState&) = delete;

private:
    unsigned int texture_ = 0;
};

} // namespace kelvartest
