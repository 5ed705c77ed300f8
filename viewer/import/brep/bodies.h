// A B-rep file as the library reads it, taken apart: the bodies in it, wherever an assembly puts them, each
// with its place, its name and its colours. Nothing is faceted here.
#pragma once

#include "viewer/import/brep/file_kind.h"

#include <Message_ProgressRange.hxx>
#include <NCollection_DataMap.hxx>
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

/// What the file says of the shapes inside one part.
struct BrepLabels {
    NCollection_DataMap<TopoDS_Shape, BrepColor, TopTools_ShapeMapHasher> colors;
};

/// A solid, a shell outside of any, or what is left of a part: loose faces, or loose edges.
struct BrepBody {
    TopoDS_Shape shape; ///< where its part has it
    gp_Trsf placement;  ///< of the part
    std::string name;
    std::vector<std::string> parents;
    std::optional<BrepColor> color; ///< of all that has none of its own
    bool overrides_colors =
        false; ///< the colour is that of this one instance, and goes before its faces' own
    std::shared_ptr<const BrepLabels> labels;
    std::size_t group = 0; ///< which component at the top it belongs to
};

struct BrepContent {
    std::vector<BrepBody> bodies;
    std::vector<std::string> group_names; ///< under two where the file has no components to tell apart
};

/// Reads the file. Lengths are millimetres but for BREP files, which have no unit. Hidden parts are left out.
/// A body that reaches into infinity is left out too.
///
/// Throws FileError, or what the library throws.
[[nodiscard]] BrepContent ReadBrepContent(const std::string& path, BrepKind kind,
                                   const Message_ProgressRange& progress);

} // namespace viewer
