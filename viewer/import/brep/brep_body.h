// A body of a B-rep file: its shape, placement, name and colours.
#pragma once

#include "viewer/import/brep/step_tessellation.h"

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
    /// `color` is the colour of this instance. It overrides the colours of its faces.
    bool overrides_colors = false;
    std::shared_ptr<const BrepLabels> labels;
    std::size_t group = 0; ///< its product, as an index into `BrepContent::group_names`
    /// Facets and lines from the file, in the part's coordinates. If it is set, the shape is null.
    std::shared_ptr<const Tessellation> tessellation;
};

} // namespace viewer
