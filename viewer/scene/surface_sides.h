// Decides from which sides the faces of a model are visible. The viewport culls back faces. The back of a
// closed surface is never seen, but that of an open one is.
#pragma once

#include "viewer/scene/model.h"

namespace viewer
{

/// Finds the connected surfaces of each piece. A surface is closed if, along each of its edges, as many faces
/// run in one direction as in the other one. Corners meet where they have exactly the same coordinates.
///
/// - A piece of open surfaces becomes two-sided.
/// - A piece of closed and open surfaces is split: its closed surfaces and its lines stay, and its open ones
///   follow in a two-sided piece of the same name.
/// - A closed surface whose faces point inwards is turned, except for a cavity, which is inside of another
///   closed surface of the piece. A piece with too many surfaces to find its cavities becomes two-sided.
///
/// A piece that is two-sided already is not changed, nor is one that closes with others: its importer has
/// oriented the whole surface. The time for a piece of n corners is proportional to n log n. Finding cavities
/// takes another second at most.
void SettleSides(Model& model);

} // namespace viewer
