#include "contracts/debug/dbgostream.h"
