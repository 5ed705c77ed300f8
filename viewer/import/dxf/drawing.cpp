#include "viewer/import/dxf/drawing.h"

#include "platform/host/cm/color.h"
#include "viewer/text/text.h"

#include <cmath>
#include <cstdint>
#include <utility>

namespace viewer
{

/// The lowest byte is the opacity; the highest byte tells whose it is.
DxfOpacity OpacityOf(double stated)
{
    constexpr std::int64_t kMaxByte = 255;
    constexpr double kMaxStated = 4294967295.0;
    if (!(std::abs(stated) <= kMaxStated))
        return {};
    const auto bits = static_cast<std::int64_t>(stated);
    switch (bits >> 24) {
    case 1:
        return {DxfOpacity::Source::Block};
    case 2:
        return {DxfOpacity::Source::Own, static_cast<float>(bits & kMaxByte) / static_cast<float>(kMaxByte)};
    default:
        return {};
    }
}

int NearestIndexOf(int color24)
{
    const auto channel = [&](unsigned int shift) {
        return static_cast<unsigned char>(static_cast<unsigned int>(color24) >> shift & 0xFFU);
    };
    return NearestColorIndex(channel(16), channel(8), channel(0));
}

std::optional<int> TrueColorOf(int color, int color24)
{
    // NOTE: Programs with a white background write the foreground, index 7, together with black.
    constexpr int kForeground = 7;
    if (color24 < 0 || (color == kForeground && color24 == 0))
        return std::nullopt;
    return NearestIndexOf(color24);
}

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
