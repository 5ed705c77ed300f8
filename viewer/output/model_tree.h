// A model as text: the tree of its assemblies and pieces, with what each is made of.
#pragma once

#include "viewer/scene/model.h"

#include <iosfwd>

namespace viewer
{

/// Prints the title with the counts of the whole, the categories with their names and how many pieces each
/// has, and the tree, one line a piece: its name, category, colour, opacity where it is not 1, and counts of
/// faces, edges, lines and solids. Categories are counted from `first_category`, which is how they count
/// where other models come before this one. Names are printed in one line each, without control characters.
void PrintModelList(std::ostream& out, const Model& model, int first_category = 0);

} // namespace viewer
