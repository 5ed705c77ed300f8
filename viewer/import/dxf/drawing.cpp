#include "viewer/import/dxf/drawing.h"

#include <algorithm>
#include <utility>

namespace viewer
{

std::pair<std::size_t, bool> DxfNames::Number(std::string_view name)
{
    std::string key(name);
    std::transform(key.begin(), key.end(), key.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    const auto [entry, is_new] = numbers_.emplace(std::move(key), numbers_.size());
    return {entry->second, is_new};
}

std::size_t DxfDrawing::LayerNamed(std::string_view name)
{
    const auto [number, is_new] = layer_names_.Number(name);
    if (is_new)
        layers.emplace_back().name = name;
    return number;
}

std::size_t DxfDrawing::BlockNamed(std::string_view name)
{
    const auto [number, is_new] = block_names_.Number(name);
    if (is_new)
        blocks.emplace_back().name = name;
    return number;
}

} // namespace viewer
