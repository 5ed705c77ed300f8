// The light in a control, which a host chooses.
#pragma once

namespace viewer
{

enum class Light {
    Shoulder, ///< from above the viewer's left shoulder
    Eye,      ///< the control's own: from the viewer's eye
    None,     ///< every face shows its own colour
};

/// Sets the light of the control whose context is current, from the next frame on. It is fixed to the viewer:
/// it does not turn with the scene.
void SetLight(Light light);
/// The next one of all lights, after the last one the first.
[[nodiscard]] Light NextLight(Light light);

} // namespace viewer
