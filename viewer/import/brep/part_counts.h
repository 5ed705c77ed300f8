// Counts of parts of a file that the model does not contain, and of a file's entities by type.
#pragma once

#include "viewer/import/brep/file_kind.h"

#include <cstddef>
#include <map>
#include <string>

namespace viewer
{

/// Parts of a file that the model does not contain, by kind.
using LeftOutCounts = std::map<std::string, std::size_t>;

/// The kind of parts without bodies and without anything else that is left out.
inline constexpr const char* kEmptyPart = "empty part";

/// The most frequent types of a file's entities with their counts, for example "120 CARTESIAN_POINT, 40
/// DIRECTION". Empty for BREP files and if no entity is found. Reads the file's text, in blocks. Types in
/// damaged files may be meaningless.
[[nodiscard]] std::string EntityCounts(const std::string& path, BrepKind kind);

} // namespace viewer
