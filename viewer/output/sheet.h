// How the ten standard views lie on one labelled sheet.
#pragma once

#include "viewer/output/picture.h"
#include "viewer/scene/standard_view.h"

#include <functional>
#include <optional>
#include <string>

namespace viewer
{

/// The grid of a sheet; lengths in pixels.
struct SheetLayout {
    int columns = 5;
    int rows = 2;
    PictureSize cell{320, 240};
    PictureSize whole;
};

/// The layout of a sheet of this size, with the grid that gives the largest views; without a size, five
/// columns of two views of 320 by 240. Throws std::runtime_error where the size leaves no room.
[[nodiscard]] SheetLayout LayOutSheet(const std::optional<PictureSize>& size);

/// Writes a sheet with a title, whole or not at all. `draw` is asked for each view in turn, in the size of a
/// cell. Throws FileError and what `draw` throws.
void WriteSheet(const std::string& path, const std::string& title, const SheetLayout& layout,
                const std::function<Picture(StandardView)>& draw);

} // namespace viewer
