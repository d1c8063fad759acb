#include "contracts/core/OruPropertyAdaptorBase.h"

#include "contracts/core/OruProperties.h"
#include "contracts/core/OruPropertyKind.h"

OruPropertyAdaptorBase::OruPropertyAdaptorBase(OruProperties& owner, const QString& key,
                                               const OruPropertyKind* kind)
    : node_(owner)
    , key_(key)
    , slot_(&owner.string().slot(key, kind))
{}

void OruPropertyAdaptorBase::setKind(const OruPropertyKind& kind)
{
    if (node_) {
        node_->string().setKind(key_, kind);
    }
}

void OruPropertyAdaptorBase::setUnit(const QString& unit)
{
    if (node_) {
        node_->string().setUnit(key_, unit);
    }
}

QString OruPropertyAdaptorBase::getUnit() const
{
    return node_ ? slot_->unit : QString();
}

void OruPropertyAdaptorBase::reset() const
{
    if (node_) {
        seen_ = slot_->revision;
    }
}
