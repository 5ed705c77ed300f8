// What a model file promises about its own size, compared with what is there. Importers are lenient about
// files that end early and would show a part as if it were the whole; they also trust counts that no memory
// could hold. These checks read sizes and counts only, never geometry.
#pragma once

#include <string>

namespace viewer
{

/// Throws FileError where the file is missing, not a regular file, unreadable or empty, or shorter than it
/// says itself (STL, PLY, OFF, binary glTF; by the file's ending). Files of other kinds are taken as they
/// are.
void CheckModelFile(const std::string& path);

} // namespace viewer
