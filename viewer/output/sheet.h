// The ten standard views on one labelled sheet.
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

/// The layout of a sheet of this size, with the grid that gives the largest views. Without a size: five
/// columns and two rows of views of 320 by 240. Throws std::runtime_error where the sheet is too small for
/// ten views.
[[nodiscard]] SheetLayout LayOutSheet(const std::optional<PictureSize>& size);

/// Writes a sheet with a title, completely or not at all. `draw` is called for each view in order and returns
/// a picture of the size of a cell. Throws FileError; exceptions of `draw` pass through.
void WriteSheet(const std::string& path, const std::string& title, const SheetLayout& layout,
                const std::function<Picture(StandardView)>& draw);

} // namespace viewer
