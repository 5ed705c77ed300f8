// OpenGL 1.1 and GLU, which every system offers, and the one enumerator of a later version that is used.
// There is no extension loader: drawing needs nothing beyond OpenGL 1.1.
#pragma once

#include "platform/winsys/winsys.h"

#include <GL/gl.h>
#include <GL/glu.h>

// Headers of OpenGL 1.1 lack multisampling. The value is that of OpenGL 1.3; a driver that does not know it
// answers glEnable with GL_INVALID_ENUM and keeps drawing.
#ifndef GL_MULTISAMPLE
#define GL_MULTISAMPLE 0x809D
#endif

/// A tessellator callback as `gluTessCallback` takes it.
using GluTessCallback = void(CALLBACK*)();
