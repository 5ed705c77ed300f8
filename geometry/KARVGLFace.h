// The polygon record that clients build and the viewport draws: corners, a normal and the name of a display
// list. It draws nothing itself, tessellates nothing and checks nothing: not that the polygon is planar, nor
// that its normal is that of its corners.
#pragma once

#include "geometry/KARVGLVertex.h"

#include <cstdint>
#include <vector>

/// One planar polygon of a surface.
///
/// The viewport takes clockwise corner order, as the viewer sees it, as the front and culls the back, so
/// corners run clockwise seen from the side that is to be visible. Copies copy the corners and share the
/// display list, which belongs to the GL context it was compiled in: nothing here creates or deletes one.
class KARV_MODULE_API KARVGLFace
{
  public:
    /// The corners in order around the boundary: one contour, no holes, the first not repeated at the end.
    /// Read and written by index with `at`, so that an index out of range is a fault and not a wild access.
    std::vector<KARVGLVertex> vertices;
    /// Sent once before the face is drawn; need not have unit length.
    KARVGLVertex normal;
    /// The display list that draws the tessellated polygon. With 0, for none, the corners are drawn: 3 as a
    /// triangle, 4 as a quadrilateral, any other number as a fan from the first. Clients leave it 0: the
    /// entity that takes the face over overwrites it.
    std::uint32_t displayList = 0;
};
