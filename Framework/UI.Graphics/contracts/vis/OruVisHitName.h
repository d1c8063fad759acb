#pragma once

#include "contracts/vis/OruVisHitRecord.h"
#include "contracts/vis/kelvar_vis_api.h"

/// Owner of one hit name: takes it when made and gives it back when destroyed. Moves, never copies.
class KELVAR_VIS_API OruVisHitName
{
public:
    OruVisHitName();
    OruVisHitName(OruVisHitName&& other) noexcept;
    OruVisHitName& operator=(OruVisHitName&& other) noexcept;
    OruVisHitName(const OruVisHitName&) = delete;
    OruVisHitName& operator=(const OruVisHitName&) = delete;
    ~OruVisHitName();

    /// The name; OruVisHitRecord::INVALID_NAME once it was moved away.
    unsigned int value() const { return name_; }

private:
    unsigned int name_;
};
