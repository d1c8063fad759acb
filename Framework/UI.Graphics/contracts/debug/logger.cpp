#include "contracts/debug/logger.h"
