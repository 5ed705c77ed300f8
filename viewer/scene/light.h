// The light in a control, which a host chooses.
#pragma once

namespace viewer
{

enum class Light {
    Shoulder, ///< from above the viewer's left shoulder
    Eye,      ///< the control's own: from the viewer's eye
    None,     ///< every face shows its own colour
};

/// Sets the light of the control whose context is current, from the next frame on. The light is fixed to the
/// eye and does not turn with the scene.
void SetLight(Light light);
/// The next light in the order of the enumeration; the first one after the last.
[[nodiscard]] Light NextLight(Light light);

} // namespace viewer
