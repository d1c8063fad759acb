#include "contracts/core/OruModifiedWatcher.h"

OruModifiedWatcher::OruModifiedWatcher(const OruModified& node)
    : node_(node)
{}

bool OruModifiedWatcher::modified() const
{
    return node_ && node_->subtreeRevision() != seen_;
}

void OruModifiedWatcher::reset() const
{
    if (node_) {
        seen_ = node_->subtreeRevision();
    }
}
