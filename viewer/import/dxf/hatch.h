// Hatches of a drawing: areas that are filled, or covered by the lines of a pattern.
#pragma once

#include "viewer/import/dxf/curve_segments.h"
#include "viewer/import/dxf/entity_numbers.h"
#include "viewer/import/dxf/spline_segments.h"
#include "viewer/scene/affine.h"
#include "viewer/scene/model.h"

#include <cstddef>
#include <optional>
#include <variant>
#include <vector>

namespace viewer
{

/// The maximum number of lines and dashes of one hatch.
inline constexpr std::size_t kMaxHatchLines = 200'000;

/// The steps of all hatches of a drawing, less than two minutes.
inline constexpr std::size_t kMaxHatchWork = 2'000'000'000;

struct DxfHatch {
    using Edge = std::variant<Segment, EllipticArc, Spline>;
    /// The edges of one closed outline, in order; each can run in either direction.
    using Path = std::vector<Edge>;

    /// Parallel lines.
    struct PatternLine {
        Point direction;            ///< of unit length
        Point base;                 ///< a point of one line, where its dashes begin
        Point offset;               ///< from one line to the next
        std::vector<double> dashes; ///< lengths: a dash, a gap if negative, a dot if 0; empty for a full line
    };

    /// Which of nested outlines are filled.
    enum class Style { OddEven, Outermost, IgnoreIslands };

    Affine frame;           ///< of the coordinates of paths and pattern
    double elevation = 0.0; ///< z of all points of paths
    std::vector<Path> paths;
    bool is_solid = false;
    Style style = Style::OddEven;
    std::vector<PatternLine> pattern;

    /// Points whose box contains all paths, in the frame's coordinates.
    [[nodiscard]] std::vector<Point> Extremes() const;
};

/// The hatch with these groups, in the frame of its extrusion. Numbers that make no edge are skipped: damaged
/// edges, and the loops of sources.
[[nodiscard]] DxfHatch HatchOf(const DxfEntityNumbers& numbers, const Affine& frame);

/// The result of drawing a hatch.
enum class HatchResult {
    Drawn,
    FilledInstead, ///< its pattern has more than `kMaxHatchLines` lines
    TooComplex,    ///< nothing is drawn
    Empty,         ///< it has no area or no pattern
};

/// Appends the faces of a filled hatch, or the lines of a pattern, placed by `place` within `tolerance` of
/// the outlines. Inner edges of the faces are not edges of the piece. `work` is reduced by the steps.
[[nodiscard]] HatchResult AppendHatch(const DxfHatch& hatch, const Affine& place, double tolerance,
                                      std::size_t& work, Piece& piece);

} // namespace viewer
