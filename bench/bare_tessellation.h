// The tessellation of a polygon as a program without the component does it: the same GLU and OpenGL calls, in
// the same order, and nothing around them.
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
    /// Compiles the polygon into a new display list of the current context and returns its name; 0 where none
    /// is current.
    GLuint Compile(std::span<const KARVGLVertex> corners);

  private:
    std::vector<std::array<GLdouble, 3>> coordinates_;
};

} // namespace karv_bench
