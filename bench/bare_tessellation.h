// Tessellates a polygon without the component: the same GLU and OpenGL calls in the same order, and nothing
// else.
#pragma once

#include "geometry/KARVGLVertex.h"
#include "platform/winsys/opengl.h"

#include <array>
#include <span>
#include <vector>

namespace karv_bench
{

class BareTessellation
{
  public:
    /// Compiles the polygon into a new display list of the current context and returns the list's name, or 0
    /// if no context is current.
    GLuint Compile(std::span<const KARVGLVertex> corners);

  private:
    std::vector<std::array<GLdouble, 3>> coordinates_;
};

} // namespace karv_bench
