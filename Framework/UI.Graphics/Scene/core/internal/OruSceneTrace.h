#pragma once

#include "contracts/core/OruDebugLogger.h"
#include "contracts/debug/trace.h"

#define ORU_SCENE_TEXT_OF(number) #number
#define ORU_SCENE_LINE_TEXT(number) " @line " ORU_SCENE_TEXT_OF(number)

/// Opens a trace scope for the rest of the enclosing function, with its full signature and its source line.
#define ORU_SCENE_TRACE()                                                                                    \
    const kelvardebug::trace oruSceneTrace(oru::debug_logger::debuglogger(), __PRETTY_FUNCTION__,            \
                                           ORU_SCENE_LINE_TEXT(__LINE__))
