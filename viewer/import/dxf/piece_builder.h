// The pieces of a drawing's model: placed entities sorted by block, layer and colour, with their curves cut.
#pragma once

#include "viewer/import/dxf/placed_entities.h"
#include "viewer/scene/model.h"

#include <cstddef>
#include <map>
#include <string>
#include <tuple>

namespace viewer
{

inline constexpr std::size_t kMaxSegments = 20'000'000;

/// No coordinate may be larger: its fourth power is still a number.
inline constexpr double kMaxCoordinate = 1e70;

/// The smallest box around an entity in its place, or around the control points of a spline; infinite where
/// something of it is farther away than that.
[[nodiscard]] Box BoxOfEntity(const PlacedEntity& placed);

class DxfPieceBuilder
{
  public:
    /// Curves are cut by `tolerance`, and all lines may come to `max_segments`. The others must outlive the
    /// object.
    DxfPieceBuilder(std::string path, const DxfDrawing& drawing, const DxfPlacedEntities& placement, double tolerance,
              std::size_t max_segments = kMaxSegments);

    /// Throws FileError at more segments than those.
    void Add(const PlacedEntity& placed);
    /// All pieces that show something, with their faces' edges and sides settled, and the layers' names.
    [[nodiscard]] Model Finish();

  private:
    Piece& PieceOf(const PlacedEntity& placed);
    Piece& NewPiece(const PlacedEntity& placed);
    void AddSegments(const PlacedEntity& placed, Piece& piece);

    std::string path_;
    const DxfDrawing& drawing_;
    const DxfPlacedEntities& placement_;
    double tolerance_;
    std::size_t max_segments_;
    Model model_;
    std::map<std::tuple<std::size_t, std::size_t, unsigned char>, std::size_t> numbers_;
    std::size_t segments_ = 0;
};

} // namespace viewer
