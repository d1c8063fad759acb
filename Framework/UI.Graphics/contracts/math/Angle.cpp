#include "contracts/math/Angle.h"
