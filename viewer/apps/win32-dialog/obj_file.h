// Models from OBJ files. A header-only library parses them; its types stay private to the source file.
#pragma once

#include "viewer/scene/model.h"

#include <filesystem>

namespace win32_dialog
{

/// Reads a model. Polygons stay whole. The faces of a group that have one material become a piece; each
/// material becomes a category and sets the colour (the nearest one of the palette) and the opacity. Material
/// files are searched in the folder of the file; where one is missing, its faces have no material. Throws
/// viewer::FileError where the file cannot be read, refers to vertices that it does not have or that are not
/// finite, has a polygon of more than 255 corners, or has no faces and no lines.
[[nodiscard]] viewer::Model ReadObjFile(const std::filesystem::path& file);

} // namespace win32_dialog
