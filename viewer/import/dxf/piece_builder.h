// Builds the pieces of a drawing's model: placed entities, grouped by blocks, layer and colour, with curves
// as segments.
#pragma once

#include "viewer/import/dxf/placed_entities.h"
#include "viewer/scene/model.h"

#include <cstddef>
#include <map>
#include <string>
#include <tuple>

namespace viewer
{

/// The maximum number of segments of all lines of a model.
inline constexpr std::size_t kMaxSegments = 20'000'000;

/// The maximum of a coordinate: its fourth power is still finite.
inline constexpr double kMaxCoordinate = 1e70;

/// The smallest box around a placed entity; for a spline, around its control points. Infinite if a coordinate
/// exceeds `kMaxCoordinate` or is not finite. Of an infinite line, its base. For a text, around the cells of
/// its characters. Empty for inserts and for entities that are not drawn.
[[nodiscard]] Box BoxOfEntity(const PlacedEntity& placed);

class DxfPieceBuilder
{
  public:
    /// Segments lie within `tolerance` of their curves. `drawing` and `placement` must outlive the object.
    DxfPieceBuilder(std::string path, const DxfDrawing& drawing, const DxfPlacedEntities& placement,
                    double tolerance, std::size_t max_segments = kMaxSegments);

    /// The box of the drawing, which ends infinite lines and gives the marks of points their size. Without it
    /// they are not drawn.
    void SetExtents(const Box& box);
    /// Throws FileError if the lines exceed `max_segments` segments. Texts that exceed half of that are left
    /// out and counted; so are entities of kinds that are not drawn.
    void Add(const PlacedEntity& placed);
    /// Returns the model: all pieces with faces or lines, their faces oriented and equal edges merged, and
    /// the names of the layers as categories.
    [[nodiscard]] Model Finish();

  private:
    Piece& PieceOf(const PlacedEntity& placed);
    Piece& NewPiece(const PlacedEntity& placed);
    void AddSegments(const PlacedEntity& placed, Piece& piece);
    void AddFaces(const PlacedEntity& placed, Piece& piece);
    void AddHatch(const DxfHatch& hatch, const PlacedEntity& placed, Piece& piece);
    void Count(std::size_t added);
    [[nodiscard]] int ModeOfPoints(std::size_t layer) const;
    void AddText(const DxfText& text, const PlacedEntity& placed);

    std::string path_;
    const DxfDrawing& drawing_;
    const DxfPlacedEntities& placement_;
    double tolerance_;
    std::size_t max_segments_;
    Model model_;
    std::map<std::tuple<std::size_t, std::size_t, unsigned char, float>, std::size_t> numbers_;
    std::size_t segments_ = 0; ///< and faces, without those of texts
    std::size_t text_segments_ = 0;
    std::size_t hatch_work_ = kMaxHatchWork;
    Box extents_; ///< with a margin; empty if not known
    double mark_size_ = 0.0;
    double dot_length_ = 0.0;
};

} // namespace viewer
