// Converts solids of the modeler to faces and line segments.
#include "geometry/KARVGraphicalEntity.h"

#include "module/guard.h"
#include "platform/modeler/body.h"

#include <vector>

using karv::Guarded;

namespace
{

/// Converts a face. Its corners are the start points of the loop's edges, at most as many as the face counts,
/// because a loop may end early.
KARVGLFace ToFace(AModeler::Face& source)
{
    KARVGLFace face;
    const AModeler::Edge* edge = source.edgeLoop();
    for (int taken = 0; taken < source.edgeCount() && edge != nullptr; ++taken) {
        const AcGePoint3d& corner = edge->vertex()->point();
        face.vertices.emplace_back(corner.x, corner.y, corner.z);
        edge = edge->next();
    }
    if (!source.isPlaneEvaluated())
        source.evaluatePlane();
    const AcGeVector3d& normal = source.plane().normal;
    face.normal = KARVGLVertex(normal.x, normal.y, normal.z);
    return face;
}

} // namespace

void KARVGraphicalEntity::CreateGLCache(AModeler::Body* body)
{
    Guarded<L"KARVGraphicalEntity::CreateGLCache">([&] {
        faces.reserve(static_cast<std::size_t>(body->faceCount()));
        // Faces of solids are not tessellated: concave ones are drawn as fans.
        for (AModeler::Face* face = body->faceList(); face != nullptr; face = face->next())
            faces.push_back(ToFace(*face));

        std::vector<AModeler::Edge*> edges;
        std::vector<AModeler::Vertex*> vertices;
        body->getPhysicalEdgesAndVertices(true, true, edges, vertices);
        for (const AModeler::Edge* edge : edges) {
            if (edge == nullptr || edge->next() == nullptr)
                continue;
            AppendSegment(edge->vertex()->point(), edge->next()->vertex()->point());
        }
    });
}
