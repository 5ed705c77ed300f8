// Counts of what a file holds: parts that the model does not contain, and entities by type.
#pragma once

#include "viewer/import/brep/file_kind.h"

#include <cstddef>
#include <map>
#include <string>

namespace viewer
{

/// Parts of a file that the model does not contain, by kind.
using LeftOutCounts = std::map<std::string, std::size_t>;

/// What a file without shapes holds, in a few words: its most frequent types of entities with their counts,
/// for example "120 CARTESIAN_POINT, 40 DIRECTION". Empty for BREP files and if no entity is found. Reads the
/// file's text, in blocks; types of damaged files are what their bytes say.
[[nodiscard]] std::string EntityCounts(const std::string& path, BrepKind kind);

} // namespace viewer
