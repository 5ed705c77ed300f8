// The scenes whose pictures are compared between the systems. They use only the control and its geometry, and
// know nothing of files or of how frames are read.
#pragma once

#include "control/KARVOpenGLControl.h"

#include <array>

namespace karv_test
{

struct Scene {
    const char* name;
    bool transparent; ///< the control's `transparent` argument
    void (*feed)(KARVOpenGLControl& control);
};

/// Solids with a hole and with many facets, client faces that are tessellated, lines, and translucent pieces.
/// All lie in the cube from 0 to 0.2.
[[nodiscard]] const std::array<Scene, 4>& Scenes();

} // namespace karv_test
