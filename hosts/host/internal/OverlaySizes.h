#pragma once

class OruProperties;

namespace hostkit {

class TreeValues;

/// The sizes in pixels that overlays have as properties.
struct OverlaySizes
{
    /// Multiplies those of all overlays below `root` while `values` lives.
    static void scale(OruProperties& root, double factor, TreeValues& values);
};

} // namespace hostkit
