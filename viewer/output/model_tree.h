// A model as text: the tree of its assemblies and pieces, with counts.
#pragma once

#include "viewer/scene/model.h"

#include <iosfwd>

namespace viewer
{

/// Prints the title with the total counts, the unit where it is known, the categories with their names and
/// numbers of pieces, and the tree with one line per piece: its name, category, colour, opacity if below 1,
/// and counts of faces, edges, lines and solids. Categories are numbered from `first_category` on, as they
/// are where other models come before this one. Names are printed without line breaks and control characters.
void PrintModelTree(std::ostream& out, const Model& model, int first_category = 0);

} // namespace viewer
