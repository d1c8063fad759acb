#include "contracts/debug/sink.h"
