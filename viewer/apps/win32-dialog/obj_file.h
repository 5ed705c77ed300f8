// Models from OBJ files, by way of a header-only loader; nothing else sees the loader's types.
#pragma once

#include "viewer/scene/model.h"

#include <filesystem>

namespace win32_dialog
{

/// Reads a model: polygons stay whole, each group's faces of one material are a piece, a material is a
/// category and gives colour (the nearest of the palette) and opacity. Material files are looked for beside
/// the file; one that is not there leaves its faces without material. Throws viewer::FileError where the file
/// cannot be read, names vertices that it does not have or that are no numbers, or shows nothing.
[[nodiscard]] viewer::Model ReadObjFile(const std::filesystem::path& file);

} // namespace win32_dialog
