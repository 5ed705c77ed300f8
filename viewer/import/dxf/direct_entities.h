// Entities that are read from their groups, because the parsing library does not report all of them.
#pragma once

#include "viewer/import/dxf/drawing.h"
#include "viewer/import/dxf/entity_numbers.h"

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
    std::optional<int> color24; ///< its colour as 0xRRGGBB, if it is not that of the entity
    std::string left_out;       ///< what is not drawn of the entity, for `Model::LeaveOut`; may be empty
};

/// The shapes of an entity of such a kind. `frame` is that of its extrusion.
[[nodiscard]] DirectShapes ShapesOfEntity(std::string_view kind, const DxfEntityNumbers& numbers,
                                          const Affine& frame);

} // namespace viewer
