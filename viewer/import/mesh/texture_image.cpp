#include "viewer/import/mesh/texture_image.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <limits>
#include <memory>
#include <stb/stb_image.h>
#include <system_error>

namespace viewer
{

namespace
{

/// The maximum number of cells in each direction.
constexpr std::size_t kMaxCells = 128;

/// A run of cells.
struct Range {
    std::size_t from;
    std::size_t to;
};

/// The cells that an interval of texture coordinates touches, in up to two runs, because it may cross the
/// border of the image.
std::vector<Range> CellsOf(double center, double half, std::size_t cells)
{
    if (!(half < 0.5))
        return {{0, cells}};
    const auto number = static_cast<double>(cells);
    const double first = center - half;
    const double begin = (first - std::floor(first)) * number;
    const auto from = std::min(static_cast<std::size_t>(begin), cells - 1);
    const auto to = static_cast<std::size_t>(std::floor(begin + 2.0 * half * number)) + 1;
    if (to <= cells)
        return {{from, to}};
    if (to - cells >= from)
        return {{0, cells}};
    return {{from, cells}, {0, to - cells}};
}

} // namespace

std::optional<TextureImage> TextureImage::FromFile(const std::string& path)
{
    std::error_code error;
    // The opening of a pipe or a device may block without end.
    if (!std::filesystem::is_regular_file(path, error))
        return std::nullopt;
    const std::uintmax_t size = std::filesystem::file_size(path, error);
    if (error || size > kMaxFileBytes)
        return std::nullopt;
    std::vector<char> bytes(static_cast<std::size_t>(size));
    std::ifstream stream(path, std::ios::binary);
    if (!stream.read(bytes.data(), static_cast<std::streamsize>(bytes.size())))
        return std::nullopt;
    return FromBytes({reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size()});
}

std::optional<TextureImage> TextureImage::FromBytes(std::span<const unsigned char> bytes)
{
    int width = 0;
    int height = 0;
    int channels = 0;
    if (bytes.empty() || bytes.size() > kMaxFileBytes)
        return std::nullopt;
    const int size = static_cast<int>(bytes.size());
    if (stbi_info_from_memory(bytes.data(), size, &width, &height, &channels) == 0 || width <= 0 ||
        height <= 0 || static_cast<std::size_t>(width) > kMaxPixels / static_cast<std::size_t>(height))
        return std::nullopt;
    // Three channels save memory for images without transparency.
    const int kept = channels == 1 || channels == 3 ? 3 : 4;
    const std::unique_ptr<unsigned char, void (*)(void*)> pixels(
        stbi_load_from_memory(bytes.data(), size, &width, &height, &channels, kept), stbi_image_free);
    if (pixels == nullptr)
        return std::nullopt;
    const auto row = static_cast<std::size_t>(width) * static_cast<std::size_t>(kept);
    return FromPixels(
        static_cast<std::size_t>(width), static_cast<std::size_t>(height), [&](std::size_t x, std::size_t y) {
            const unsigned char* pixel = pixels.get() + y * row + x * static_cast<std::size_t>(kept);
            const auto channel = [&](int i) { return static_cast<float>(pixel[i]) / 255.0F; };
            return FileColor{channel(0), channel(1), channel(2), kept == 4 ? channel(3) : 1.0F};
        });
}

std::optional<TextureImage>
TextureImage::FromPixels(std::size_t width, std::size_t height,
                         const std::function<FileColor(std::size_t x, std::size_t y)>& pixel)
{
    if (width == 0 || height == 0)
        return std::nullopt;
    TextureImage image(CellCount(width), CellCount(height));
    for (std::size_t y = 0; y < height; ++y) {
        const std::size_t row = (height - 1 - y) * image.height_ / height;
        for (std::size_t x = 0; x < width; ++x) {
            const FileColor color = pixel(x, y);
            Sums& cell = image.At(x * image.width_ / width + 1, row + 1);
            const auto alpha = static_cast<double>(color.alpha);
            cell[0] += static_cast<double>(color.red) * alpha;
            cell[1] += static_cast<double>(color.green) * alpha;
            cell[2] += static_cast<double>(color.blue) * alpha;
            cell[3] += alpha;
        }
    }
    image.SumUp();
    return image;
}

TextureImage::TextureImage(std::size_t width, std::size_t height)
    : width_(width), height_(height), sums_((width + 1) * (height + 1))
{
}

std::size_t TextureImage::CellCount(std::size_t pixels)
{
    return std::min(pixels, kMaxCells);
}

void TextureImage::SumUp()
{
    for (std::size_t row = 1; row <= height_; ++row)
        for (std::size_t column = 1; column <= width_; ++column)
            for (std::size_t i = 0; i < 4; ++i)
                At(column, row)[i] +=
                    At(column - 1, row)[i] + At(column, row - 1)[i] - At(column - 1, row - 1)[i];
}

TextureImage::Sums TextureImage::SumOver(std::size_t left, std::size_t right, std::size_t bottom,
                                         std::size_t top) const
{
    Sums sums{};
    for (std::size_t i = 0; i < 4; ++i)
        sums.at(i) =
            At(right, top).at(i) - At(left, top).at(i) - At(right, bottom).at(i) + At(left, bottom).at(i);
    return sums;
}

FileColor TextureImage::MeanNear(std::span<const TexturePoint> polygon) const
{
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    TexturePoint min{kInfinity, kInfinity};
    TexturePoint max{-kInfinity, -kInfinity};
    TexturePoint sum;
    for (const TexturePoint& point : polygon) {
        min = {std::min(min.u, point.u), std::min(min.v, point.v)};
        max = {std::max(max.u, point.u), std::max(max.v, point.v)};
        sum = {sum.u + point.u, sum.v + point.v};
    }
    const auto count = static_cast<double>(polygon.size());
    const TexturePoint half{(max.u - min.u) / 4.0, (max.v - min.v) / 4.0};
    // Larger coordinates have too few digits after the point for a place in the image.
    constexpr double kMaxCoordinate = 1e9;
    const bool usable = !polygon.empty() && std::abs(sum.u) < kMaxCoordinate &&
                        std::abs(sum.v) < kMaxCoordinate && std::isfinite(half.u) && std::isfinite(half.v);
    Sums total{};
    for (const Range& columns : usable ? CellsOf(sum.u / count, half.u, width_) : CellsOf(0, 1, width_))
        for (const Range& rows : usable ? CellsOf(sum.v / count, half.v, height_) : CellsOf(0, 1, height_)) {
            const Sums part = SumOver(columns.from, columns.to, rows.from, rows.to);
            for (std::size_t i = 0; i < 4; ++i)
                total.at(i) += part.at(i);
        }
    // Smaller sums of alphas are those of transparent pixels and rounding.
    constexpr double kNoWeight = 1e-6;
    if (total[3] < kNoWeight)
        return {1.0F, 1.0F, 1.0F, 1.0F};
    return {static_cast<float>(total[0] / total[3]), static_cast<float>(total[1] / total[3]),
            static_cast<float>(total[2] / total[3]), 1.0F};
}

} // namespace viewer
