// Points of a drawing, drawn as the marks that its header chooses.
#pragma once

#include "viewer/import/dxf/curve_segments.h"
#include "viewer/scene/affine.h"
#include "viewer/scene/model.h"

#include <vector>

namespace viewer
{

struct DxfPoint {
    Affine frame; ///< its axes are those of the mark; the origin is the point
    Point by;     ///< to the other end of a point with thickness, otherwise 0
};

/// The header variables $PDMODE and $PDSIZE.
struct DxfPointStyle {
    int mode = 0;
    double size = 0.0;
};

/// The size of marks in a drawing with this box: that of the style, or a share of the height of the box: by
/// percents if the style's size is negative, 5 percent if it is 0. It is above 0 and finite.
[[nodiscard]] double MarkSize(const DxfPointStyle& style, const Box& box);

/// Appends the mark: a dot, plus, x, tick or nothing, in a circle or square or both, with circles within
/// `tolerance`. All lie in the plane of x and y, so that a flat drawing stays flat. A dot is a small plus of
/// length `dot_length`, because lines without a length are not drawn.
void AppendPoint(const DxfPoint& point, const Affine& place, int mode, double size, double dot_length,
                 double tolerance, std::vector<Segment>& lines);

} // namespace viewer
