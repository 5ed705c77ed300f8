// One renderable object of the viewport: faces, line segments or both, with one colour, one opacity, a
// category and a bounding box. It knows nothing of cameras, windows or the scene it stands in.
#pragma once

#include "geometry/KARVGLFace.h"
#include "geometry/KARVGLVertex.h"

#include <cstdint>
#include <vector>

class AcDbEntity;
class AcGePoint3d;
namespace AModeler
{
class Body;
} // namespace AModeler

/// A renderable object, a value: copies are deep but for the display lists of tessellated faces, which they
/// share and which nothing ever deletes (they live as long as the GL context that compiled them).
///
/// No operation throws, and no argument is checked: a fault inside one is reported through the tools
/// library and leaves the entity with what it had by then. To be built and drawn on the thread that owns
/// the viewport; where a GL context is needed, the operation says so.
class KARV_MODULE_API KARVGraphicalEntity
{
  public:
    /// A category, chosen by the client for each piece of geometry and switched on and off as a whole. The
    /// values 0 to 10 are known to every viewport from its creation; any other value is accepted and kept as
    /// it is.
    enum EntityType : std::int32_t {
        EntityType0 = 0,
        EntityType1,
        EntityType2,
        EntityType3,
        EntityType4,
        EntityType5,
        EntityType6,
        EntityType7,
        EntityType8,
        EntityType9,
        EntityType10,
    };

    /// Empty, category 0, black, opaque, box (0, 0, 0) to (0, 0, 0).
    KARVGraphicalEntity();
    KARVGraphicalEntity(const KARVGraphicalEntity& source);
    KARVGraphicalEntity(KARVGraphicalEntity&& source) noexcept;
    /// From a host entity, which is only read: a line gives one segment in the line's colour (the low 8 bits
    /// of its index); any other kind, and null, gives an entity without geometry.
    ///
    /// The box of a line keeps its far corner at the origin or beyond, never below: clients size their
    /// margins by it.
    KARVGraphicalEntity(AcDbEntity* entity, EntityType type);
    /// From a solid, which is only read and must not be null: a face for each of its faces, with the normal
    /// of the face's plane (evaluated where it is not yet) and no display list, so that concave faces are
    /// drawn as fans; and a segment for each physical edge. `color_index` is cut to its low 8 bits.
    ///
    /// The box is that of the edges, with its far corner kept as for a line.
    KARVGraphicalEntity(AModeler::Body* body, EntityType type, unsigned short color_index);
    /// From polygons, whose normals are taken as they are. Faces of four or more corners are tessellated into
    /// display lists, so the viewport's GL context must be current; where no list can be had, a face is drawn
    /// directly from its corners. `color_index` is cut to its low 8 bits.
    KARVGraphicalEntity(std::vector<KARVGLFace> source, EntityType type, unsigned short color_index);
    ~KARVGraphicalEntity();

    KARVGraphicalEntity& operator=(const KARVGraphicalEntity& source);
    KARVGraphicalEntity& operator=(KARVGraphicalEntity&& source) noexcept;

    EntityType GetEntityType();
    void SetEntityType(EntityType type);
    /// Sets the colour to that of a colour index, by the host's full 16-bit route.
    void SetColor(unsigned short color_index);
    /// Sets the opacity of the faces, 1 for opaque; kept as given, with no limits. Lines ignore it.
    void SetAlpha(float opacity);
    /// Copies the box's corners, in model units; (0, 0, 0) twice for an entity without geometry.
    void GetExtents(KARVGLVertex& min, KARVGLVertex& max);
    /// The number of faces; lines do not count.
    int GetFaceNumber();

    /// Grows the box to take the point in, axis by axis. A point outside by no more than a tolerance of
    /// 1e-20, absolute and relative, leaves it as it is. The first point of a box must be seeded by the
    /// caller.
    static void DoesPointContainExtent(KARVGLVertex point, KARVGLVertex& min, KARVGLVertex& max);

  private:
    friend class KARVOpenGLControl;

    struct BoxOnly {
    };
    /// Takes the box of the source and leaves its geometry: a copy for whoever only asks for the extents.
    KARVGraphicalEntity(const KARVGraphicalEntity& source, BoxOnly /*tag*/) noexcept
        : minExtent(source.minExtent), maxExtent(source.maxExtent), extentsValid(source.extentsValid)
    {
    }

    void InitParameters();
    void CreateGLCache(AcDbEntity* entity);
    void CreateGLCache(AModeler::Body* body);
    /// Appends a line segment and takes its ends into the box.
    void AppendSegment(const AcGePoint3d& start_point, const AcGePoint3d& end_point);

    /// Compiles the polygon's triangles into a new display list and stores its name in the face, 0 where no
    /// list or no tessellator can be had. Needs the viewport's GL context.
    void TesselateFace(KARVGLFace& face);
    /// The cross product over the first three corners: not of unit length, and (0, 0, 0) for fewer corners or
    /// corners in one line. Points to the viewer who sees the corners run counter-clockwise.
    KARVGLVertex FindFaceNormal(std::vector<KARVGLVertex> corners);

    /// Draws the faces, or the lines where there is no face. Needs the viewport's GL context.
    void DrawObjectQuads();
    /// Draws the line segments, unlit and opaque. Needs the viewport's GL context.
    void DrawObjectLines();

    std::vector<KARVGLFace> faces;
    std::vector<KARVGLVertex> lineVertices; ///< two per segment
    EntityType entityType = EntityType0;
    KARVGLVertex color; ///< red, green, blue in 0..1
    float alpha = 1.0F;
    KARVGLVertex minExtent;
    KARVGLVertex maxExtent;
    bool extentsValid = false; ///< the box has been seeded with a first point
};
