// Faces of a drawing made fit for the viewport, which draws each as a fan: those that are bent or concave are
// split, faces of one surface are turned the same way round, and their own edges are told from the others.
#pragma once

#include "viewer/import/dxf/drawing.h"
#include "viewer/scene/model.h"

#include <vector>

namespace viewer
{

/// Appends a face in its place, as one or two convex flat ones, and its edges to the piece's; none of those
/// that are hidden or that only split it. A face that shows nothing leaves no face. Where corners coincide
/// they are one.
void AppendDxfFace(const DxfFace& face, const Affine& place, Piece& piece);

/// Keeps each of the piece's edges once.
void RemoveRepeatedEdges(Piece& piece);

/// Turns faces that share an edge the same way round, since drawings do not say which side of a face is
/// outside: that of the first where they stay open, outwards where they close.
void OrientFaces(std::vector<ModelFace>& faces);

} // namespace viewer
