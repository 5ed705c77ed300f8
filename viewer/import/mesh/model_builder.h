// Collects the faces, lines and points of a mesh file into pieces of one palette colour and one opacity.
#pragma once

#include "viewer/scene/model.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace viewer
{

/// A colour of a file. Channels run from 0 to 1; others are clamped.
struct FileColor {
    float red = 0.6F;
    float green = 0.6F;
    float blue = 0.6F;
    float alpha = 1.0F;

    bool operator==(const FileColor&) const = default;
    [[nodiscard]] bool IsFinite() const;
};

/// The product of the channels.
[[nodiscard]] FileColor operator*(const FileColor& a, const FileColor& b);

/// Sums colours for their mean.
class ColorMean
{
  public:
    void Add(const FileColor& color);
    /// The default colour if nothing was added.
    [[nodiscard]] FileColor Mean() const;

  private:
    FileColor sum_{0.0F, 0.0F, 0.0F, 0.0F};
    float count_ = 0.0F;
};

/// The maximum number of points that are drawn; further ones are left out.
inline constexpr std::size_t kMaxPoints = 1'000'000;

/// Makes the model of a mesh file. A mesh becomes one piece for each palette colour and opacity of its parts,
/// in the order in which these first appear. Opacities are rounded to 1/16 where parts of a mesh differ.
///
/// Faces, lines and points with a coordinate that is not finite are left out and counted. So are faces that
/// enclose no area because their outline crosses itself. Faces whose corners lie on one line are not visible
/// and are dropped without a count.
class ModelBuilder
{
  public:
    /// Begins a mesh. `pattern` has the name, the parents, the category and the opacity of its pieces.
    /// `face_count` is the expected number of faces.
    void BeginMesh(Piece pattern, std::size_t face_count);
    /// The corners run counter-clockwise as seen from outside. The colour's alpha is a factor of the mesh's
    /// opacity.
    void AddFace(std::vector<Point> corners, const FileColor& color);
    void AddLine(const Point& from, const Point& to, const FileColor& color);
    /// A point is drawn as three crossing strokes along the axes.
    void AddPoint(const Point& point, const FileColor& color);
    /// Adds a point for one corner, a line for two, and a face for more. Nothing happens without corners.
    void AddPart(std::vector<Point> corners, const FileColor& color);
    /// Counts a part of the mesh that refers to a missing vertex.
    void LeaveOutDamaged() { ++damaged_; }
    void LeaveOut(std::string_view kind, std::size_t count = 1) { model_.LeaveOut(kind, count); }

    /// The model. Categories that have pieces are numbered again, from 0 without gaps, in the order of their
    /// numbers. `category_names` has their names by the numbers of before; further categories have no name.
    /// Throws FileError, with the reason, if the model has no pieces.
    [[nodiscard]] Model Finish(const std::string& path, std::span<const std::string> category_names = {});

  private:
    struct PointMark {
        std::size_t piece;
        Point point;
    };

    Piece& PieceOf(const FileColor& color);
    std::size_t IndexOf(const FileColor& color);
    unsigned char PaletteIndexOf(const FileColor& color);
    void DrawPoints();

    Model model_;
    Piece pattern_;
    std::size_t face_count_ = 0;
    std::unordered_map<unsigned int, std::size_t> pieces_; ///< of the mesh, by colour and opacity
    std::optional<FileColor> last_color_;
    std::size_t last_piece_ = 0;
    std::vector<PointMark> points_;
    std::size_t damaged_ = 0;
    std::size_t not_finite_ = 0;
    std::size_t without_area_ = 0;
    std::size_t points_left_out_ = 0;
    /// Palette indices that were looked up: the 24 bits of the colour, above them 1 for a used entry.
    struct CachedIndex {
        std::uint32_t color = 0;
        unsigned char index = 0;
    };
    std::array<CachedIndex, 4096> cache_{};
};

} // namespace viewer
