#include "viewer/import/dxf/drawing.h"

#include "viewer/text/text.h"

#include <utility>

namespace viewer
{

std::pair<std::size_t, bool> DxfNameNumbers::Number(std::string_view name)
{
    const auto [entry, is_new] = numbers_.emplace(LowerCase(name), numbers_.size());
    return {entry->second, is_new};
}

std::size_t DxfDrawing::LayerNumber(std::string_view name)
{
    const auto [number, is_new] = layer_names_.Number(name);
    if (is_new)
        layers.emplace_back().name = name;
    return number;
}

std::size_t DxfDrawing::BlockNumber(std::string_view name)
{
    const auto [number, is_new] = block_names_.Number(name);
    if (is_new)
        blocks.emplace_back().name = name;
    return number;
}

} // namespace viewer
