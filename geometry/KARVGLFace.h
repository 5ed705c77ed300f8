// The polygon record: corners, a normal and the name of a display list. Clients build it and the viewport
// draws it. It does not draw, tessellate or check: neither that the polygon is planar, nor that the normal
// fits its corners.
#pragma once

#include "geometry/KARVGLVertex.h"
#include "module/export.h"

#include <cstdint>
#include <vector>

/// One planar polygon of a surface.
///
/// The corners run clockwise seen from the visible side. The viewport culls the other side. A copy has
/// corners of its own and shares the display list, which belongs to the GL context that compiled it. Nothing
/// here creates or deletes a list.
class KARV_MODULE_API KARVGLFace
{
  public:
    /// The corners in order around the boundary: one contour without holes, the first corner not repeated at
    /// the end. Access by index uses `at`, so that an index out of range is a fault and not an invalid
    /// access.
    std::vector<KARVGLVertex> vertices;
    /// The normal of the whole face. It need not have unit length.
    KARVGLVertex normal;
    /// The display list that draws the tessellated polygon, or 0 for none. Without a list the corners are
    /// drawn: 3 as a triangle, 4 as a quadrilateral, any other number as a fan from the first corner. Clients
    /// leave it 0; an entity built from the face overwrites it.
    std::uint32_t displayList = 0;
};
