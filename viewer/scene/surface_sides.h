// From which sides the faces of a model are visible. The viewport culls back faces: those of a closed surface
// are never seen, but those of an open one are.
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
/// - A closed surface that encloses its volume from outside, because its faces point inwards, is turned. A
///   cavity, which lies within another closed surface of the piece, stays as it is. A piece with too many
///   surfaces to tell which of them are cavities becomes two-sided.
///
/// A piece that is two-sided before stays so. One that closes with others is neither made two-sided nor
/// turned: its importer has oriented the whole surface. The time for a piece is n log n of its corners, in
/// addition to a second at most for its cavities.
void SettleSides(Model& model);

} // namespace viewer
