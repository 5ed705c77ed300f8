// The bodies in a B-rep file, one for each place where an assembly puts them, with placement, name and
// colours. Nothing is faceted here.
#pragma once

#include "viewer/import/brep/file_kind.h"
#include "viewer/import/brep/part_counts.h"
#include "viewer/import/brep/step_tessellation.h"
#include "viewer/import/import_options.h"

#include <Message_ProgressRange.hxx>
#include <NCollection_DataMap.hxx>
#include <TopTools_MapOfShape.hxx>
#include <TopTools_ShapeMapHasher.hxx>
#include <TopoDS_Shape.hxx>
#include <gp_Trsf.hxx>

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace viewer
{

struct BrepColor {
    unsigned char index = 0; ///< of the palette
    float alpha = 1.0F;

    bool operator==(const BrepColor&) const = default;
};

/// The styles of faces inside one part.
struct BrepLabels {
    NCollection_DataMap<TopoDS_Shape, BrepColor, TopTools_ShapeMapHasher> colors;
    TopTools_MapOfShape hidden;
};

/// A solid, a shell outside of solids, or the loose faces, edges or points of a part.
struct BrepBody {
    TopoDS_Shape shape; ///< in the part's coordinates
    gp_Trsf placement;  ///< of the part
    std::string name;
    std::vector<std::string> parents;
    std::optional<BrepColor> color; ///< of faces without a colour of their own
    /// `color` is that of this instance and applies to all faces, whatever their own colours.
    bool overrides_colors = false;
    std::shared_ptr<const BrepLabels> labels;
    std::size_t group = 0; ///< its product, as an index into `BrepContent::group_names`
    /// Facets and lines from the file, in the part's coordinates. If it is set, the shape is null.
    std::shared_ptr<const Tessellation> tessellation;
};

struct BrepContent {
    std::vector<BrepBody> bodies;
    std::vector<std::string> group_names; ///< of products; fewer than two if the file has no groups
    LeftOutCounts left_out;
};

/// Reads a file. Lengths of STEP and IGES files are millimetres; BREP files have no unit. Faces of an IGES
/// file that meet are sewn to shells. Hidden parts, unbounded bodies and empty parts are counted as left out.
/// Throws FileError, and passes the library's exceptions on.
[[nodiscard]] BrepContent ReadBrepContent(const std::string& path, BrepKind kind,
                                          const ImportOptions& options,
                                          const Message_ProgressRange& progress);

} // namespace viewer
