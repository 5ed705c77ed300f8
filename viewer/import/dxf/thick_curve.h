// Curves with a width or a thickness, which are drawn as faces. A width is measured in the plane of the
// curve, a thickness perpendicular to it.
#pragma once

#include "viewer/import/dxf/curve_segments.h"
#include "viewer/scene/affine.h"
#include "viewer/scene/model.h"

#include <variant>
#include <vector>

namespace viewer
{

/// The surface that a curve sweeps along a vector. The curve itself is an entity of its own.
struct DxfWall {
    std::variant<Segment, EllipticArc> curve;
    Point by;

    /// Points whose box contains the wall.
    [[nodiscard]] std::vector<Point> Extremes() const;
};

/// A flat polyline with widths.
struct DxfBand {
    struct Vertex {
        Point point;
        double bulge = 0.0; ///< of the part that begins here
        double start_width = 0.0;
        double end_width = 0.0;
    };

    Affine frame; ///< of the vertices
    std::vector<Vertex> vertices;
    bool is_closed = false;
    double thickness = 0.0; ///< along z of the frame

    /// Points whose box contains the band, in the frame's coordinates, except for bulges.
    [[nodiscard]] std::vector<Point> Extremes() const;
};

/// Appends the faces, within `tolerance` of the curve. The edges of a wall are its far curve and its ends.
void AppendWall(const DxfWall& wall, const Affine& place, double tolerance, Piece& piece);

/// Appends the faces of the parts that have a width. Straight parts of equal width meet in a miter. A band
/// without thickness has no edges. Parts narrower than `line_width` get their center line, because they can
/// be narrower than a pixel, and parts without width are only that line.
void AppendBand(const DxfBand& band, const Affine& place, double tolerance, double line_width, Piece& piece);

} // namespace viewer
