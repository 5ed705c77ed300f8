// Tessellated geometry of a STEP file: triangles and lines that are stored as such. The library does not know
// it.
#pragma once

#include "viewer/import/brep/part_counts.h"
#include "viewer/scene/model.h"

#include <array>
#include <optional>
#include <string>
#include <vector>

namespace viewer
{

/// A solid, a shell or a set of curves. Coordinates are millimetres, in the coordinates of the product.
struct Tessellation {
    std::string name;
    std::string product; ///< the name of its product; empty for annotations and if it is not known
    bool is_annotation = false;
    std::optional<std::array<unsigned char, 3>> color; ///< red, green, blue
    std::vector<ModelFace> faces;                      ///< triangles
    std::vector<Segment> lines;
};

/// Reads the tessellated geometry. That of a solid that the file also stores exactly is not read. Parts that
/// refer to missing data are counted. Files without tessellated geometry are searched for one word only.
[[nodiscard]] std::vector<Tessellation> ReadTessellations(const std::string& path, LeftOutCounts& left_out);

} // namespace viewer
