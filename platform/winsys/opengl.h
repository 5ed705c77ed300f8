// OpenGL 1.1 and GLU as every system offers them, plus the one enum of a later version that is
// used. No extension loader: the drawing needs nothing beyond OpenGL 1.1.
#pragma once

#include "platform/winsys/winsys.h"

#include <GL/gl.h>
#include <GL/glu.h>

// Headers of OpenGL 1.1 stop short of multisampling. The value is the one that OpenGL 1.3 assigned;
// a driver that does not know it answers glEnable with GL_INVALID_ENUM and draws on.
#ifndef GL_MULTISAMPLE
#define GL_MULTISAMPLE 0x809D
#endif

/// A tessellator callback as `gluTessCallback` takes it.
using GluTessCallback = void(CALLBACK*)();
