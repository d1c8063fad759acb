#include "contracts/vis/OruVisHitProperty.h"

OruVisHitProperty::IQualifier::~IQualifier() = default;
