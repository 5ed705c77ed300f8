// Faces shared by the tests of the geometry.
#pragma once

#include "geometry/KARVGraphicalEntity.h"
#include "platform/host/db/entities.h"

#include <initializer_list>
#include <stdexcept>
#include <utility>
#include <vector>

namespace karv_test
{

inline constexpr unsigned short kRed = 1;
inline constexpr unsigned short kGreen = 3;

inline KARVGLFace Face(std::initializer_list<KARVGLVertex> corners,
                       const KARVGLVertex& normal = {0.0, 0.0, 1.0})
{
    KARVGLFace face;
    face.vertices = corners;
    face.normal = normal;
    return face;
}

/// An entity of line ends only, of colour (0.25, 0.5, 0.75) and opacity 0.5.
inline KARVGraphicalEntity Lines(std::vector<KARVGLVertex> ends)
{
    KARVGraphicalEntity entity;
    entity.lineVertices = std::move(ends);
    entity.color = {0.25, 0.5, 0.75};
    entity.alpha = 0.5F;
    return entity;
}

inline KARVGLFace Triangle()
{
    return Face({{0.0, 0.0, 0.0}, {1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}});
}

/// A square of `side` in the plane z = 0, its lower left corner at the origin.
inline KARVGLFace Square(double side = 1.0)
{
    return Face({{0.0, 0.0, 0.0}, {side, 0.0, 0.0}, {side, side, 0.0}, {0.0, side, 0.0}});
}

/// An L whose notch is the square from (1, 1) to (2, 2). From its first corner a fan covers the notch.
inline KARVGLFace LShape()
{
    return Face({{2.0, 0.0, 0.0},
                 {2.0, 1.0, 0.0},
                 {1.0, 1.0, 0.0},
                 {1.0, 2.0, 0.0},
                 {0.0, 2.0, 0.0},
                 {0.0, 0.0, 0.0}});
}

/// An entity of one face, in red.
inline KARVGraphicalEntity EntityOf(const KARVGLFace& face)
{
    return KARVGraphicalEntity(std::vector<KARVGLFace>{face}, KARVGraphicalEntity::EntityType2, kRed);
}

/// An entity of these faces and category 3.
inline KARVGraphicalEntity FromFaces(std::vector<KARVGLFace> faces, unsigned short color = kRed)
{
    return {std::move(faces), KARVGraphicalEntity::EntityType3, color};
}

/// A host line whose `isA` throws.
class BrokenLine : public AcDbLine
{
  public:
    BrokenLine() : AcDbLine({1.0, 2.0, 3.0}, {4.0, 5.0, 6.0}) { setColorIndex(kRed); }
    [[nodiscard]] AcRxClass* isA() const override { throw std::runtime_error("the host fails"); }
};

} // namespace karv_test
