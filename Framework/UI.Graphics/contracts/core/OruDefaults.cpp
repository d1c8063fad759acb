#include "contracts/core/OruDefaults.h"

const Kelvar::Math::Matrix OruMatrix0;
const QColor QColor0;
