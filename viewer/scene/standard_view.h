// The ten standard views, with the names that options and labels give them, and the two projections.
#pragma once

#include <array>
#include <optional>
#include <string_view>

namespace viewer
{

enum class StandardView { Front, Back, Left, Right, Top, Bottom, SE, SW, NE, NW };

enum class Projection { Perspective, Parallel };

[[nodiscard]] constexpr Projection OtherThan(Projection projection)
{
    return projection == Projection::Perspective ? Projection::Parallel : Projection::Perspective;
}

/// Every view, in the order of a sheet.
inline constexpr std::array kStandardViews = {
    StandardView::Front,  StandardView::Back, StandardView::Left, StandardView::Right, StandardView::Top,
    StandardView::Bottom, StandardView::SE,   StandardView::SW,   StandardView::NE,    StandardView::NW};

/// "front", "se" and so on.
[[nodiscard]] std::string_view NameOf(StandardView view);
/// The view with this name, in small letters; nothing for any other text.
[[nodiscard]] std::optional<StandardView> StandardViewNamed(std::string_view name);

} // namespace viewer
