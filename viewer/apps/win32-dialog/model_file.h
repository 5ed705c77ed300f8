// Model files of any kind, chosen by the extension.
#pragma once

#include "viewer/scene/model.h"

#include <filesystem>

namespace win32_dialog
{

/// Throws viewer::FileError where there is no such file or it is not a regular file.
void CheckModelFile(const std::filesystem::path& file);

/// Reads OBJ files (.obj, in letters of either case) through `ReadObjFile`, and files of all other kinds
/// through `viewer::ImportModel`. Throws viewer::FileError as `CheckModelFile` and those do.
[[nodiscard]] viewer::Model ReadModelFile(const std::filesystem::path& file);

} // namespace win32_dialog
