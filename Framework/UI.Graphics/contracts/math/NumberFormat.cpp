#include "contracts/math/NumberFormat.h"
