#pragma once

#include "contracts/math/Matrix.h"
#include "hosts/mesh/MeshSource.h"
#include "hosts/mesh/Origin.h"
#include "hosts/mesh/UpAxis.h"

#include <QString>
#include <QStringList>

#include <cstdint>
#include <utility>
#include <vector>

namespace hostkit {

/// A model as the program model_reader gives it: what a Model is made from.
struct ModelSource
{
    /// A list of the model. Without '/'.
    struct Node
    {
        /// The index of a node ahead of this one.
        std::uint32_t parent;
        QString name;
    };

    /// One part of the model.
    struct Use
    {
        /// Indices of the list that it is in, and of what it shows.
        std::uint32_t node;
        std::uint32_t mesh;
        /// Without '/'; empty where the file gives none.
        QString name;
        Kelvar::Math::Matrix placement;
    };

    std::vector<MeshSource> meshes;

    /// The first one is the model itself and has neither name nor parent.
    std::vector<Node> nodes{Node{0, QString()}};

    std::vector<Use> uses;

    /// See Model.
    UpAxis up;
    Origin origin = {};
    std::vector<std::pair<QString, QString>> properties;
    QStringList notes;
};

} // namespace hostkit
