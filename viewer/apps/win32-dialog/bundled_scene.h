// The model that the dialog shows when no file is named.
#pragma once

#include "viewer/scene/model.h"

namespace win32_dialog
{

/// A shaft in two posts on a plate, with centre lines, under a translucent cover. Categories: 0 frame (plate
/// and posts), 1 shaft, 2 centre lines, 3 cover.
[[nodiscard]] viewer::Model MakeBundledScene();

} // namespace win32_dialog
