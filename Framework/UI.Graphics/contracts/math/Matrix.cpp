#include "contracts/math/Matrix.h"
