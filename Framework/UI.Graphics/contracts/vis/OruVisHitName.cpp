#include "contracts/vis/OruVisHitName.h"

#include "contracts/vis/OruVisHitNames.h"

#include <utility>

OruVisHitName::OruVisHitName()
    : name_(OruVisHitNames::acquire())
{}

OruVisHitName::OruVisHitName(OruVisHitName&& other) noexcept
    : name_(std::exchange(other.name_, OruVisHitRecord::INVALID_NAME))
{}

OruVisHitName& OruVisHitName::operator=(OruVisHitName&& other) noexcept
{
    std::swap(name_, other.name_);
    return *this;
}

OruVisHitName::~OruVisHitName()
{
    if (name_ != OruVisHitRecord::INVALID_NAME) {
        OruVisHitNames::release(name_);
    }
}
