#include "contracts/debug/trace.h"
