#include "viewer/scene/prism.h"

#include "platform/modeler/primitives.h"

#include <cmath>
#include <numbers>

namespace viewer
{

namespace
{

ModelFace ToModelFace(AModeler::Face& face)
{
    ModelFace result;
    const AModeler::Edge* edge = face.edgeLoop();
    for (int i = 0; i < face.edgeCount(); ++i, edge = edge->next()) {
        const AcGePoint3d& corner = edge->vertex()->point();
        result.corners.push_back({corner.x, corner.y, corner.z});
    }
    if (!face.isPlaneEvaluated())
        face.evaluatePlane();
    const AcGeVector3d& normal = face.plane().normal;
    result.normal = {normal.x, normal.y, normal.z};
    return result;
}

} // namespace

Outline Arc(PlanePoint center, double radius, double from, double to, int steps)
{
    Outline points;
    for (int i = 0; i <= steps; ++i) {
        const double angle = (from + (to - from) * i / steps) * std::numbers::pi / 180.0;
        points.push_back({center.u + radius * std::cos(angle), center.v + radius * std::sin(angle)});
    }
    return points;
}

Outline RegularPolygon(PlanePoint center, double radius, int corners)
{
    Outline outline = Arc(center, radius, 0.0, 360.0, corners);
    outline.pop_back();
    return outline;
}

std::vector<ModelFace> PrismFaces(const Profile& profile, const Frame& frame, double from, double to)
{
    AModeler::Profile loops;
    for (const Outline& outline : profile) {
        std::vector<AcGePoint3d>& loop = loops.emplace_back();
        for (const PlanePoint& point : outline) {
            const Point placed = frame.At(point, from);
            loop.emplace_back(placed.x, placed.y, placed.z);
        }
    }
    const Point way = frame.w * (to - from);
    AModeler::Body body = AModeler::MakePrism(loops, {way.x, way.y, way.z});
    std::vector<ModelFace> faces;
    for (AModeler::Face* face = body.faceList(); face != nullptr; face = face->next())
        faces.push_back(ToModelFace(*face));
    return faces;
}

} // namespace viewer
