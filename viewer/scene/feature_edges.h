// What the faces of a piece make together: a closed solid, or a surface whose edges have to be found.
#pragma once

#include "platform/modeler/body.h"
#include "viewer/scene/model.h"

#include <functional>
#include <optional>
#include <vector>

namespace viewer
{

/// Two facets that meet at less than this angle, in degrees, belong to one smooth surface: no edge is seen
/// there.
inline constexpr double kSmoothAngle = 20.0;

/// The piece as a body of the modeler, with its points where `place` puts them; nothing where its faces do
/// not close. Corners at exactly the same coordinates are one point. Physical are the edges that the piece
/// lists; of a piece without a list, those that are not smooth.
[[nodiscard]] std::optional<AModeler::Body> MakeSolid(const Piece& piece,
                                                      const std::function<Point(const Point&)>& place);

/// The edges of the piece's faces that the eye sees, as they stand in the file, each once: those that it
/// lists, or else those at its border, those where more than two faces or two of opposite directions meet,
/// and those that are not smooth.
[[nodiscard]] std::vector<Segment> FeatureEdges(const Piece& piece);

} // namespace viewer
