#pragma once

// The one place where OpenGL's own header comes in. Everything that names a GL function, type or constant
// includes this file; a unit that uses GLEW includes <GL/glew.h> ahead of it, and then nothing is declared
// twice. Qt's OpenGL headers come after it: they keep gl.h from declaring what is younger than OpenGL 1.3.

#ifndef GL_GLEXT_PROTOTYPES
#define GL_GLEXT_PROTOTYPES 1
#endif
#include <GL/gl.h>

/// The mask with which a pass saves all attribute groups. Not GL_ALL_ATTRIB_BITS, whose value differs from
/// one maker's gl.h to the next.
constexpr unsigned int OruOglAllAttribBits = 0xfffff;

/// The format of a capture's depth buffer. Not GL_DEPTH_COMPONENT24: common headers give that name 0x81a6 and
/// this value to 32 bits of depth.
constexpr unsigned int OruOglDepthComponent24 = 0x81a7;
