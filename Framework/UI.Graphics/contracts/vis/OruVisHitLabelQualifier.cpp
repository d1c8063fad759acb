#include "contracts/vis/OruVisHitLabelQualifier.h"

OruVisHitLabelQualifier::~OruVisHitLabelQualifier() = default;
