// The model that is shown when no file is named: a pillow block with its bolts.
#pragma once

#include "viewer/scene/model.h"

namespace viewer
{

/// A bearing housing on a bolted foot, in millimetres. It stands on z = 0, with the bore along y. The faces
/// of every piece close. Categories: 0 foot, 1 housing, 2 ribs, 3 bush, 4 washers, 5 bolts.
[[nodiscard]] Model MakeBundledModel();

} // namespace viewer
