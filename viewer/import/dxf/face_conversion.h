// Converts faces of a drawing to those of the viewport, which draws each face as a fan. Non-planar and
// concave faces are split, and the faces of a surface get the same orientation.
#pragma once

#include "viewer/import/dxf/dxf_face.h"
#include "viewer/scene/affine.h"
#include "viewer/scene/model.h"

#include <vector>

namespace viewer
{

/// Transforms a face by `place` and appends it to the piece as one or two convex planar faces, none if it has
/// no area. Its edges are appended too, without hidden edges and without the diagonal that splits it.
/// Coincident neighbouring corners are merged.
void AppendDxfFace(const DxfFace& face, const Affine& place, Piece& piece);

/// Removes all but the first of equal edges of the piece; direction does not count.
void RemoveRepeatedEdges(Piece& piece);

/// Orients faces that share an edge alike, because drawings do not define the outside of a face. A closed
/// surface is turned outwards, an open one keeps the orientation of its first face.
void OrientFaces(std::vector<ModelFace>& faces);

} // namespace viewer
