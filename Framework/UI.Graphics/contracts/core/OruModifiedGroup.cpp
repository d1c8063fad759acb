#include "contracts/core/OruModifiedGroup.h"

#include "contracts/core/internal/OruPropertiesLayout.h"

OruModifiedGroup::OruModifiedGroup()
    : layout_(new OruPropertiesLayout)
{}

OruModifiedGroup::~OruModifiedGroup() = default;

OruModifiedGroup& OruModifiedGroup::handOver()
{
    handedOver_ = true;
    return *this;
}

void OruModifiedGroup::unlock()
{
    if (locks_ > 0) {
        --locks_;
    }
}

void OruModifiedGroup::detach()
{
    --nodes_;
    if (nodes_ == 0 && handedOver_) {
        delete this;
    }
}
