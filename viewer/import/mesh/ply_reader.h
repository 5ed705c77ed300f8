// Reads PLY files, of text and binary in both byte orders.
#pragma once

#include "viewer/import/progress.h"
#include "viewer/scene/model.h"

#include <string>

namespace viewer
{

/// Reads a file. All parts are of one mesh: faces, strips of triangles ("tristrips") and edges. The vertices
/// of a file without them become points. A face or an edge has its own colour, or the mean of its texture, or
/// the mean of its vertices' colours. A comment "TextureFile" names the texture. Elements and properties of
/// other names are skipped. Throws FileError.
[[nodiscard]] Model ReadPly(const std::string& path, const ProgressFunction& progress);

} // namespace viewer
