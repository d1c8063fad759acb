#pragma once

#include "hosts/mesh/Model.h"

#include <QString>

#include <vector>

namespace hostkit {
class HostScene;
} // namespace hostkit

/// What the viewer puts into a scene, in a window and for pictures alike.
struct SceneContent
{
    /// Adds the models and, unless they are there, the planes that can cut them, the list of what is measured
    /// and the axes in the corner. Who drops a part on another is told so on standard output.
    static void add(hostkit::HostScene& host, const std::vector<hostkit::Model>& models);

    /// Takes all models out.
    static void clear(hostkit::HostScene& host);

    /// Takes out what belongs to the models that were shown: what was measured, and cuts through them.
    static void forget(hostkit::HostScene& host);

    /// What differs from the scene's own from the start: the background and, unless a state file brings its
    /// own, the light.
    static void dress(hostkit::HostScene& host, bool withLight = true);

    /// Key of the property of a model's list that names its file, with its whole path; none if it came in on
    /// standard input.
    static const QString fileKey;
};
