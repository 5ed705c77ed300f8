#include "viewer/scene/standard_view.h"

#include <cstddef>

namespace viewer
{

namespace
{

constexpr std::array<std::string_view, kStandardViews.size()> kNames = {
    "front", "back", "left", "right", "top", "bottom", "se", "sw", "ne", "nw"};

} // namespace

std::string_view NameOf(StandardView view)
{
    return kNames.at(static_cast<std::size_t>(view));
}

std::optional<StandardView> StandardViewNamed(std::string_view name)
{
    for (const StandardView view : kStandardViews)
        if (NameOf(view) == name)
            return view;
    return std::nullopt;
}

} // namespace viewer
