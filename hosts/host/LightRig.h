#pragma once

#include "hosts/host/kelvar_host_api.h"

class OruScene;

namespace hostkit {

/// Light for looking at models: three lights that travel with the eye, and some light from everywhere.
///
/// The key light comes from above right and makes the form. A weaker one from the left and a faint one from
/// below and behind reach what the key does not, so that no side that is seen is black; together they leave
/// white just short of full brightness everywhere.
///
///     LightRig::apply(host.scene());
///     host.changed();
class KELVAR_HOST_API LightRig
{
public:
    /// Sets the lights "light.1" to "light.3" of the scene and its ambient light, all as properties that can
    /// be edited and saved. Lights of other names stay as they are. False: the scene's list of lights was
    /// taken out, and nothing has changed.
    static bool apply(OruScene& scene);
};

} // namespace hostkit
