// Computes face normals and compiles polygons into display lists with the GLU tessellator.
#include "geometry/KARVGraphicalEntity.h"

#include "geometry/widening.h"
#include "module/guard.h"
#include "platform/winsys/opengl.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <memory>
#include <vector>

using karv::Guarded;
using karv::Widened;

namespace
{

void CALLBACK BeginPrimitive(GLenum type)
{
    glBegin(type);
}

void CALLBACK EndPrimitive()
{
    glEnd();
}

/// Tessellation errors are not reported. The list of a face whose outline crosses itself holds the primitives
/// before the error, or nothing.
void CALLBACK IgnoreTessellationError(GLenum code)
{
    static_cast<void>(gluErrorString(code));
}

void CALLBACK SendVertex(void* coordinates)
{
    glVertex3dv(static_cast<const GLdouble*>(coordinates));
}

/// Whether the tessellator would end the process on the polygon.
///
/// NOTE: GLU sorts more than 100 corners (its TESS_MAX_CACHE) in a priority queue, whose order a NaN breaks; an
/// assertion of GLU then aborts. Up to 100 corners it looks at the plane first, which a NaN leaves without any
/// triangle. Infinities keep the order.
bool BreaksTessellator(const std::vector<KARVGLVertex>& corners)
{
    constexpr std::size_t kMaxUnsortedCorners = 100;
    return corners.size() > kMaxUnsortedCorners &&
           std::any_of(corners.begin(), corners.end(), [](const KARVGLVertex& corner) {
               return std::isnan(corner.x) || std::isnan(corner.y) || std::isnan(corner.z);
           });
}

/// Tessellates one contour. `coordinates` has the size of `corners`: the tessellator keeps pointers to its
/// elements and reads them when the polygon ends.
void TessellatePolygon(GLUtesselator* tess, const std::vector<KARVGLVertex>& corners,
                       std::vector<std::array<GLdouble, 3>>& coordinates)
{
    gluTessBeginPolygon(tess, nullptr);
    gluTessBeginContour(tess);
    for (std::size_t i = 0; i < corners.size(); ++i) {
        const AcGePoint3d corner = Widened(corners.at(i));
        std::array<GLdouble, 3>& place = coordinates.at(i);
        place = {corner.x, corner.y, corner.z};
        gluTessVertex(tess, place.data(), place.data());
    }
    gluTessEndContour(tess);
    gluTessEndPolygon(tess);
}

struct TessellatorDeleter {
    void operator()(GLUtesselator* tessellator) const { gluDeleteTess(tessellator); }
};

} // namespace

void KARVGraphicalEntity::TesselateFace(KARVGLFace& face)
{
    const GLuint list = glGenLists(1);
    if (list == 0) {
        face.displayList = 0;
        return;
    }
    std::unique_ptr<GLUtesselator, TessellatorDeleter> tessellator(gluNewTess());
    if (!tessellator) {
        face.displayList = 0;
        return;
    }
    GLUtesselator* const tess = tessellator.get();
    gluTessCallback(tess, GLU_TESS_BEGIN, reinterpret_cast<GluTessCallback>(BeginPrimitive));
    gluTessCallback(tess, GLU_TESS_END, reinterpret_cast<GluTessCallback>(EndPrimitive));
    gluTessCallback(tess, GLU_TESS_ERROR, reinterpret_cast<GluTessCallback>(IgnoreTessellationError));
    gluTessCallback(tess, GLU_TESS_VERTEX, reinterpret_cast<GluTessCallback>(SendVertex));

    // Allocated before the list is open: an exception must not leave it open.
    std::vector<std::array<GLdouble, 3>> coordinates(face.vertices.size());
    glNewList(list, GL_COMPILE);
    if (!BreaksTessellator(face.vertices))
        TessellatePolygon(tess, face.vertices, coordinates);
    glEndList();
    gluDeleteTess(tessellator.release());
    face.displayList = list;
}

KARVGLVertex KARVGraphicalEntity::FindFaceNormal(std::vector<KARVGLVertex> corners)
{
    return Guarded<L"KARVGraphicalEntity::FindFaceNormal">([&] {
        if (corners.size() < 3)
            return KARVGLVertex();
        const AcGePoint3d middle = Widened(corners.at(1));
        const AcGeVector3d a = Widened(corners.at(0)) - middle;
        const AcGeVector3d b = Widened(corners.at(2)) - middle;
        const AcGeVector3d normal = b.crossProduct(a);
        return KARVGLVertex(normal.x, normal.y, normal.z);
    });
}
