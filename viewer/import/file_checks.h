// Compares the size that a model file states with the size that it has. The parsing libraries accept files
// that end early, so that a part of a model would be shown as the whole. They also trust counts that exceed
// any memory. These checks read sizes and counts only, no geometry.
#pragma once

#include <string>

namespace viewer
{

/// Throws FileError if the file is missing, is not a regular file, cannot be read, is empty, or is shorter
/// than it states. The size is checked for STL, PLY, OFF and binary glTF files, which are told by their
/// extension; files of other kinds pass. Each importer calls this once, before it parses.
void CheckModelFile(const std::string& path);

} // namespace viewer
