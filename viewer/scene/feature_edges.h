// The visible edges of a piece: as a body of the modeler where its faces close, else as a list of segments;
// and bodies of edges alone.
#pragma once

#include "platform/modeler/body.h"
#include "viewer/scene/model.h"

#include <functional>
#include <optional>
#include <vector>

namespace viewer
{

/// Two facets whose normals differ by less than this angle, in degrees, belong to one smooth surface: there
/// is no visible edge between them.
inline constexpr double kSmoothAngle = 20.0;

/// Makes a body of the piece's faces, with its points mapped by `place`; returns nothing where the faces do
/// not close. Corners at exactly the same coordinates become one point. The physical edges are those that the
/// piece lists; for a piece without a list, those that are not smooth.
[[nodiscard]] std::optional<AModeler::Body> MakeSolid(const Piece& piece,
                                                      const std::function<Point(const Point&)>& place);

/// A body of the physical edges of another body, without its faces.
[[nodiscard]] AModeler::Body MakeWires(AModeler::Body& solid);
/// A body of these segments, with their ends mapped by `place`. Segments with an end that is then not finite
/// are left out.
[[nodiscard]] AModeler::Body MakeWires(const std::vector<Segment>& segments,
                                       const std::function<Point(const Point&)>& place);

/// The visible edges of the piece's faces, in file coordinates, each once: those that the piece lists, or
/// else border edges, edges of more than two faces, edges of two faces with opposite orientation, and edges
/// that are not smooth.
[[nodiscard]] std::vector<Segment> FeatureEdges(const Piece& piece);

} // namespace viewer
