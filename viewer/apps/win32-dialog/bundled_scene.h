// What the dialog shows without a file.
#pragma once

#include "viewer/scene/model.h"

namespace win32_dialog
{

/// A shaft in two posts on a plate, under a translucent cover, with centre lines: each a category of its own.
[[nodiscard]] viewer::Model MakeBundledScene();

} // namespace win32_dialog
