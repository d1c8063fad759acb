#include "contracts/math/BoundingBox.h"
