#pragma once

#include "hosts/mesh/ModelNode.h"
#include "hosts/mesh/Origin.h"
#include "hosts/mesh/UpAxis.h"

#include <QString>
#include <QStringList>

#include <utility>
#include <vector>

namespace hostkit {

/// What a file shows: its outermost node, named as the file is without folder and suffix. In a frame whose Z
/// axis points up. Never without a part when it comes from the importer.
struct Model : ModelNode
{
    /// The axis that pointed up in the file; the parts are turned already.
    UpAxis up;

    /// What has to be added to coordinates of this frame to get those of the file, turned so that Z points
    /// up. All 0 for a model that is not far from 0.
    Origin origin = {};

    /// What the file tells of itself, such as its author, its generator and its unit: key and value.
    std::vector<std::pair<QString, QString>> properties;

    /// What could not be had of the file, a readable line each.
    QStringList notes;
};

} // namespace hostkit
