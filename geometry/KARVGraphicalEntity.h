// One renderable object of the viewport: faces, line segments or both, with one colour, one opacity, one
// category and a bounding box. It does not know cameras, windows or the scene.
#pragma once

#include "geometry/KARVGLFace.h"
#include "geometry/KARVGLVertex.h"
#include "module/export.h"

#include <cstdint>
#include <vector>

class AcDbEntity;
class AcGePoint3d;
namespace AModeler
{
class Body;
} // namespace AModeler

/// A renderable object. A value: copies are deep, except that they share the display lists of tessellated
/// faces. These lists are never deleted; they live as long as the GL context that compiled them.
///
/// Arguments are not checked. No operation throws: a fault is reported through the tools library, and changes
/// made before it stay. Entities are built and drawn on the thread that owns the viewport. An operation that
/// needs a GL context says so.
class KARV_MODULE_API KARVGraphicalEntity
{
  public:
    /// A category. The client chooses one for each piece of geometry and shows or hides it as a whole. Every
    /// viewport knows the values 0 to 10 from its creation; any other value is accepted and kept.
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

    /// An entity without geometry: category 0, black, opaque, box (0, 0, 0) to (0, 0, 0).
    KARVGraphicalEntity();
    KARVGraphicalEntity(const KARVGraphicalEntity& source);
    KARVGraphicalEntity(KARVGraphicalEntity&& source) noexcept;
    /// Converts a host entity. A line becomes one segment in the line's colour, of whose index only the low 8
    /// bits count. Any other kind, or null, gives an entity without geometry. The host entity is only read.
    ///
    /// No component of the far corner of a line's box is below 0: clients size their margins by it.
    KARVGraphicalEntity(AcDbEntity* entity, EntityType type);
    /// Converts a solid, which must not be null. Each of its faces becomes a face and each physical edge a
    /// segment. A face takes the normal of its plane, which is evaluated if it is not yet, and gets no
    /// display list, so concave faces are drawn as fans. Only the low 8 bits of `color_index` count. The
    /// solid is otherwise only read.
    ///
    /// The box is that of the edges. No component of its far corner is below 0, as for a line.
    KARVGraphicalEntity(AModeler::Body* body, EntityType type, unsigned short color_index);
    /// Takes polygons with their normals. Faces with four or more corners are tessellated into display lists,
    /// so the viewport's GL context must be current. A face without a list is drawn from its corners. Only
    /// the low 8 bits of `color_index` count.
    KARVGraphicalEntity(std::vector<KARVGLFace> source, EntityType type, unsigned short color_index);
    ~KARVGraphicalEntity();

    KARVGraphicalEntity& operator=(const KARVGraphicalEntity& source);
    KARVGraphicalEntity& operator=(KARVGraphicalEntity&& source) noexcept;

    EntityType GetEntityType();
    void SetEntityType(EntityType type);
    /// Sets the colour from a colour index of the host. All 16 bits of the index count.
    void SetColor(unsigned short color_index);
    /// Sets the opacity of the faces; 1 is opaque. The value is not limited. Lines ignore it.
    void SetAlpha(float opacity);
    /// Copies the corners of the box, in model units. Both are (0, 0, 0) for an entity without geometry.
    void GetExtents(KARVGLVertex& min, KARVGLVertex& max);
    /// Returns the number of faces. Lines do not count.
    int GetFaceNumber();

    /// Grows the box, axis by axis, until it contains the point. A point that lies outside by no more than a
    /// tolerance of 1e-20 (absolute plus relative) does not change it. The caller sets both corners of a new
    /// box to its first point.
    static void DoesPointContainExtent(KARVGLVertex point, KARVGLVertex& min, KARVGLVertex& max);

  private:
    friend class KARVOpenGLControl;

    struct BoxOnly {
    };
    /// Copies the box of the source without its geometry, for callers that only read the extents.
    KARVGraphicalEntity(const KARVGraphicalEntity& source, BoxOnly /*tag*/) noexcept
        : minExtent(source.minExtent), maxExtent(source.maxExtent), extentsValid(source.extentsValid)
    {
    }

    void InitParameters();
    void CreateGLCache(AcDbEntity* entity);
    void CreateGLCache(AModeler::Body* body);
    /// Appends a line segment and grows the box to contain it.
    void AppendSegment(const AcGePoint3d& start_point, const AcGePoint3d& end_point);

    /// Tessellates the polygon into a new display list and stores the list's name in the face; 0 if there is
    /// no list or no tessellator. Needs the viewport's GL context.
    void TesselateFace(KARVGLFace& face);
    /// Returns the cross product at the first three corners, not normalized: (0, 0, 0) for fewer corners or
    /// corners on one line. It points to the side from which the corners run counter-clockwise.
    KARVGLVertex FindFaceNormal(std::vector<KARVGLVertex> corners);

    /// Draws the faces, or the lines if there are no faces. Needs the viewport's GL context.
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
    bool extentsValid = false; ///< whether the box contains a first point
};
