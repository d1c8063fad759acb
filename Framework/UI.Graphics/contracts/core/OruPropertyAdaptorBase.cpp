#include "contracts/core/OruPropertyAdaptorBase.h"

#include "contracts/core/OruProperties.h"
#include "contracts/core/OruPropertyKind.h"

OruPropertyAdaptorBase::OruPropertyAdaptorBase(OruProperties& owner, const QString& key,
                                               const OruPropertyKind* kind)
    : node_(owner)
    , key_(key)
    , seen_(0)
    , row_(owner.string().bind(key, kind))
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
    return node_ ? node_->string().getUnit(key_, QString()) : QString();
}

void OruPropertyAdaptorBase::reset() const
{
    if (node_) {
        seen_ = node_->string().revision(row_);
    }
}

void OruPropertyAdaptorBase::begin(const QString& text)
{
    if (node_) {
        node_->string().begin(key_, text);
    }
}
