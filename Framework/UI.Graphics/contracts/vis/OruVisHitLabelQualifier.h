#pragma once

#include "contracts/vis/OruVisHitProperty.h"
#include "contracts/vis/kelvar_vis_api.h"

#include <QString>

/// Says that the part that was hit is a label, and what it reads.
struct KELVAR_VIS_API OruVisHitLabelQualifier : OruVisHitProperty::IQualifier
{
    OruVisHitLabelQualifier() = default;
    explicit OruVisHitLabelQualifier(const QString& text)
        : label(text)
    {}
    OruVisHitLabelQualifier(const OruVisHitLabelQualifier&) = default;
    OruVisHitLabelQualifier& operator=(const OruVisHitLabelQualifier&) = default;
    ~OruVisHitLabelQualifier() override;

    QString label;
};
