#include "contracts/math/Vector3.h"
