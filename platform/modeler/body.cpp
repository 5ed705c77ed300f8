#include "platform/modeler/body.h"

#include "platform/modeler/loop_plane.h"

#include <cstddef>
#include <numbers>

namespace AModeler
{

void Edge::setPhysical(bool is_physical) noexcept
{
    is_physical_ = is_physical;
    if (partner_ != nullptr)
        partner_->is_physical_ = is_physical;
}

void Face::evaluatePlane()
{
    plane_ = PlaneOfLoop([&](const auto& visit) {
        const Edge* edge = first_edge_;
        for (int i = 0; i < edge_count_ && edge != nullptr; ++i, edge = edge->next())
            visit(edge->vertex()->point());
    });
    is_plane_evaluated_ = true;
}

Body::Body(Body&& source) noexcept = default;
Body& Body::operator=(Body&& source) noexcept = default;
Body::~Body() = default;

void Body::getPhysicalEdgesAndVertices(bool with_edges, bool with_vertices, std::vector<Edge*>& edges,
                                       std::vector<Vertex*>& vertices)
{
    std::vector<bool> is_edge_known(edges_.size());
    std::vector<bool> is_vertex_known(vertices_.size());
    const auto report_vertex = [&](Vertex* vertex) {
        const auto index = static_cast<std::size_t>(vertex - vertices_.data());
        if (!is_vertex_known[index])
            vertices.push_back(vertex);
        is_vertex_known[index] = true;
    };
    for (Edge& edge : edges_) {
        const auto index = static_cast<std::size_t>(&edge - edges_.data());
        if (!edge.isPhysical() || is_edge_known[index])
            continue;
        if (edge.partner() != nullptr)
            is_edge_known[static_cast<std::size_t>(edge.partner() - edges_.data())] = true;
        if (with_edges)
            edges.push_back(&edge);
        if (with_vertices) {
            report_vertex(edge.vertex());
            if (edge.next() != nullptr)
                report_vertex(edge.next()->vertex());
        }
    }
}

void Body::markSmoothEdges(double angle)
{
    constexpr double kRadiansPerDegree = std::numbers::pi / 180.0;
    for (Face& face : faces_)
        if (!face.isPlaneEvaluated())
            face.evaluatePlane();
    for (Edge& edge : edges_) {
        if (edge.face() == nullptr || edge.partner() == nullptr)
            continue;
        const AcGeVector3d& here = edge.face()->plane().normal;
        const AcGeVector3d& there = edge.partner()->face()->plane().normal;
        const bool has_planes = here.lengthSqrd() > 0.0 && there.lengthSqrd() > 0.0;
        if (has_planes && here.angleTo(there) < angle * kRadiansPerDegree)
            edge.setPhysical(false);
    }
}

} // namespace AModeler
