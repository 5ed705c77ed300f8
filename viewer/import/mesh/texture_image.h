// The image of a texture, reduced to a coarse grid of mean colours. The stb library decodes images: PNG,
// JPEG, BMP, TGA and PNM.
#pragma once

#include "viewer/import/mesh/model_builder.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace viewer
{

/// A position in an image: (0,0) is its lower left corner, (1,1) its upper right one. The image repeats
/// outside of this square.
struct TexturePoint {
    double u = 0.0;
    double v = 0.0;
};

/// Means of the colours of an image, weighted by the alphas of its pixels. Means are opaque.
class TextureImage
{
  public:
    /// Reads an image file or the bytes of one. Returns nothing for an image that is missing, damaged or of
    /// an unknown kind, and for one of more than `kMaxPixels` or `kMaxFileBytes`.
    [[nodiscard]] static std::optional<TextureImage> FromFile(const std::string& path);
    [[nodiscard]] static std::optional<TextureImage> FromBytes(std::span<const unsigned char> bytes);
    /// Calls `pixel(x, y)` once for each pixel; y points downwards. Returns nothing for an empty image.
    [[nodiscard]] static std::optional<TextureImage>
    FromPixels(std::size_t width, std::size_t height,
               const std::function<FileColor(std::size_t x, std::size_t y)>& pixel);

    /// The mean colour near the middle of a polygon: over a rectangle about the mean of its corners, half as
    /// wide and high as the polygon. The mean of the whole image without corners, and if a corner is not
    /// finite or is huge.
    [[nodiscard]] FileColor MeanNear(std::span<const TexturePoint> polygon) const;

    static constexpr std::size_t kMaxPixels = 8192UL * 8192UL;
    static constexpr std::size_t kMaxFileBytes = 256UL << 20U;

  private:
    /// Sums of the channels of 8 bits, those of colours multiplied by alpha, and of alpha.
    using Sums = std::array<double, 4>;

    TextureImage(std::size_t width, std::size_t height);
    [[nodiscard]] static std::size_t CellCount(std::size_t pixels);
    void SumUp();
    /// The sum over the cells from (left, bottom) to (right, top), without the column `right` and the row
    /// `top`.
    [[nodiscard]] Sums SumOver(std::size_t left, std::size_t right, std::size_t bottom,
                               std::size_t top) const;
    [[nodiscard]] Sums& At(std::size_t column, std::size_t row) { return sums_[row * (width_ + 1) + column]; }
    [[nodiscard]] const Sums& At(std::size_t column, std::size_t row) const
    {
        return sums_[row * (width_ + 1) + column];
    }

    std::size_t width_; ///< in cells
    std::size_t height_;
    /// At (c, r), after `SumUp`: the sum of all cells left of column c and below row r. Before it: the cell
    /// (c - 1, r - 1) alone.
    std::vector<Sums> sums_;
};

} // namespace viewer
