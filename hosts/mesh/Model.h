#pragma once

#include "hosts/mesh/ModelNode.h"

namespace hostkit {

/// What a file shows: its outermost node, named as the file is without folder and suffix. In a frame whose Z
/// axis points up. Never without a part when it comes from the importer.
struct Model : ModelNode
{};

} // namespace hostkit
