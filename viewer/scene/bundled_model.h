// The model that is shown when none is named: a pillow block with its bolts, made here point by point.
#pragma once

#include "viewer/scene/model.h"

namespace viewer
{

/// A bearing housing on a bolted foot, in millimetres, standing on z = 0 with the bore along y. Every piece
/// is a closed solid; categories: 0 foot, 1 housing, 2 ribs, 3 bush, 4 washers, 5 bolts.
[[nodiscard]] Model MakeBundledModel();

} // namespace viewer
