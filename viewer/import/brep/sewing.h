// Joins faces that meet to shells. Files of surfaces store each face alone.
#pragma once

#include "viewer/import/brep/brep_body.h"

#include <vector>

namespace viewer
{

/// Sews the bodies that are loose faces. Faces of one place in the assembly are sewn together: those of all
/// parts at the root, else those of one part. The shells that result become bodies, with the colours of their
/// faces; the other faces stay as they are. `tolerance` is the largest distance between edges that meet, in
/// millimetres; it is limited to a small part of the faces' box. Nothing is sewn if there are more than
/// `kMaxSewnFaces` faces, or after `kMaxSewingSeconds`.
void SewLooseFaces(std::vector<BrepBody>& bodies, double tolerance);

inline constexpr int kMaxSewnFaces = 20000;
inline constexpr double kMaxSewingSeconds = 30.0;

} // namespace viewer
