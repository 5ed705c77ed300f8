// Entities that are read from their groups, because the parsing library does not report all of them.
#pragma once

#include "viewer/import/dxf/drawing.h"
#include "viewer/import/dxf/entity_numbers.h"
#include "viewer/scene/polygon_fill.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace viewer
{

/// Whether entities of this kind are read here.
[[nodiscard]] bool IsReadDirectly(std::string_view kind);

struct DirectShapes {
    std::vector<decltype(DxfEntity::shape)> shapes;
    std::optional<int> color24; ///< 0xRRGGBB, if not the entity's colour
    std::string left_out;       ///< a part that is not drawn, for `Model::LeaveOut`; may be empty
};

/// The steps for the faces of all subdivision meshes of a drawing.
inline constexpr std::size_t kMaxMeshWork = 10 * kMaxFillWork;

/// The shapes of an entity of such a kind. `frame` belongs to its extrusion. `work` is reduced by the steps
/// for concave faces; without it they are cut as if they were convex.
[[nodiscard]] DirectShapes ShapesOfEntity(std::string_view kind, const DxfEntityNumbers& numbers,
                                          const Affine& frame, std::size_t& work);

} // namespace viewer
