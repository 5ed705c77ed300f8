// The scenes whose pictures are compared between the systems. They know the control and what it is fed with,
// and nothing of files or of how a frame is read.
#pragma once

#include "control/KARVOpenGLControl.h"

#include <array>

namespace karv_test
{

struct Scene {
    const char* name;
    bool transparent; ///< what the control is created with
    void (*feed)(KARVOpenGLControl& control);
};

/// Solids with a hole and with many facets, client faces through the tessellator, lines, and translucent
/// pieces. All lie in the cube from 0 to 0.2.
[[nodiscard]] const std::array<Scene, 4>& Scenes();

} // namespace karv_test
