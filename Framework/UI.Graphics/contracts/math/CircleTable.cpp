#include "contracts/math/CircleTable.h"
