#include "viewer/window/window_icon.h"

#include <array>
#include <cstddef>
#include <numbers>
#include <vector>

namespace viewer
{

namespace
{

constexpr int kSide = 64;
/// Samples of a pixel along each axis, which smooth the outline.
constexpr int kSamples = 4;
constexpr std::size_t kChannels = 4;

struct Offset {
    double x;
    double y;
};

/// A face of the cube: the parallelogram of two of its edges at the middle of the icon. Pixels, y points up.
struct Face {
    Offset first;
    Offset second;
    std::array<BYTE, 3> color; ///< blue, green, red
};

constexpr double kEdge = 30.0;
constexpr Offset kRight{0.5 * std::numbers::sqrt3 * kEdge, 0.5 * kEdge};
constexpr Offset kLeft{-0.5 * std::numbers::sqrt3 * kEdge, 0.5 * kEdge};
constexpr Offset kDown{0.0, -kEdge};
constexpr std::array kFaces = {Face{kRight, kLeft, {235, 206, 120}}, Face{kLeft, kDown, {190, 140, 30}},
                               Face{kDown, kRight, {130, 85, 10}}};

/// Whether the point lies in the face, measured from the middle of the icon.
bool Contains(const Face& face, Offset point)
{
    const double area = face.first.x * face.second.y - face.first.y * face.second.x;
    const double along_first = (point.x * face.second.y - point.y * face.second.x) / area;
    const double along_second = (face.first.x * point.y - face.first.y * point.x) / area;
    return along_first >= 0.0 && along_first < 1.0 && along_second >= 0.0 && along_second < 1.0;
}

/// Blue, green, red and opacity of a pixel: the average of its samples that lie in the cube.
std::array<BYTE, kChannels> PixelAt(int column, int row)
{
    std::array<int, kChannels - 1> sums{};
    int inside = 0;
    for (int i = 0; i < kSamples * kSamples; ++i) {
        const int across = i % kSamples;
        const int down = i / kSamples;
        const Offset point{column + (across + 0.5) / kSamples - 0.5 * kSide,
                           0.5 * kSide - row - (down + 0.5) / kSamples};
        for (const Face& face : kFaces)
            if (Contains(face, point)) {
                for (std::size_t channel = 0; channel < sums.size(); ++channel)
                    sums.at(channel) += face.color.at(channel);
                ++inside;
                break;
            }
    }
    std::array<BYTE, kChannels> pixel{};
    for (std::size_t channel = 0; inside > 0 && channel < sums.size(); ++channel)
        pixel.at(channel) = static_cast<BYTE>(sums.at(channel) / inside);
    pixel.back() = static_cast<BYTE>(255 * inside / (kSamples * kSamples));
    return pixel;
}

HICON MakeIcon()
{
    std::vector<BYTE> pixels;
    pixels.reserve(kChannels * kSide * kSide);
    for (int row = 0; row < kSide; ++row)
        for (int column = 0; column < kSide; ++column)
            for (const BYTE channel : PixelAt(column, row))
                pixels.push_back(channel);
    // The opacity decides which pixels are drawn, so the mask has no bit set.
    const std::vector<BYTE> mask(kSide * kSide / 8);
    return CreateIcon(GetModuleHandleW(nullptr), kSide, kSide, 1, 8 * kChannels, mask.data(), pixels.data());
}

} // namespace

HICON ProgramIcon()
{
    static const HICON icon = MakeIcon();
    return icon;
}

} // namespace viewer
