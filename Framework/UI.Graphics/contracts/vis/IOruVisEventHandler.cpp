#include "contracts/vis/IOruVisEventHandler.h"

IOruVisEventHandler::~IOruVisEventHandler() = default;
