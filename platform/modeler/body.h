// Solids as polyhedral boundary representations: faces bounded by loops of edges, edges that join vertices.
// It knows nothing of how bodies are made (body_builder.h) or drawn.
//
// An edge here is one side of an edge of the solid: it runs along the loop of one face, and its partner runs
// the other way along the neighbour's. Loops run clockwise as seen from outside, and planes' normals point
// outwards. Any thread, one at a time for each body.
#pragma once

#include "platform/export.h"
#include "platform/host/ge/geometry.h"

#include <cstddef>
#include <vector>

namespace AModeler
{

class BodyBuilder;
class Edge;
class Face;

/// Through all points p with `normal` . p + `offset` = 0.
struct Plane {
    AcGeVector3d normal;
    double offset = 0.0;
};

/// A corner of the solid.
class Vertex
{
  public:
    /// In model units.
    [[nodiscard]] const AcGePoint3d& point() const noexcept { return point_; }

  private:
    friend class BodyBuilder;
    AcGePoint3d point_;
};

/// One side of an edge of the solid.
class Edge
{
  public:
    /// Where the edge starts; it ends where the next one of its loop starts.
    [[nodiscard]] Vertex* vertex() const noexcept { return vertex_; }
    /// The next edge of the loop; that of the last one is the first.
    [[nodiscard]] Edge* next() const noexcept { return next_; }
    /// The other side of the edge, in the loop of the neighbouring face, or of the same one at a bridge.
    [[nodiscard]] Edge* partner() const noexcept { return partner_; }
    [[nodiscard]] Face* face() const noexcept { return face_; }
    /// Whether it is an edge of the solid to the eye; edges that only divide a face are not.
    [[nodiscard]] bool isPhysical() const noexcept { return is_physical_; }
    /// For both sides of the edge.
    KARV_PLATFORM_API void setPhysical(bool is_physical) noexcept;

  private:
    friend class BodyBuilder;
    Vertex* vertex_ = nullptr;
    Edge* next_ = nullptr;
    Edge* partner_ = nullptr;
    Face* face_ = nullptr;
    bool is_physical_ = true;
};

/// A flat polygon of the surface, bounded by one loop.
class Face
{
  public:
    /// The number of edges in the boundary loop.
    [[nodiscard]] int edgeCount() const noexcept { return edge_count_; }
    /// The first edge of the loop.
    [[nodiscard]] Edge* edgeLoop() const noexcept { return first_edge_; }
    /// The next face of the body, null after the last.
    [[nodiscard]] Face* next() const noexcept { return next_; }

    [[nodiscard]] bool isPlaneEvaluated() const noexcept { return is_plane_evaluated_; }
    /// The plane that was evaluated last; zeros before.
    [[nodiscard]] const Plane& plane() const noexcept { return plane_; }
    /// Computes the plane from the whole loop (Newell's method), so that corners in one line do no harm: a
    /// normal of unit length that points to whoever sees the loop run clockwise, through the mean of the
    /// corners. A loop that encloses no area, or whose corners are not a finite way apart, gives the zero
    /// plane.
    KARV_PLATFORM_API void evaluatePlane();

  private:
    friend class BodyBuilder;
    Edge* first_edge_ = nullptr;
    Face* next_ = nullptr;
    Plane plane_;
    int edge_count_ = 0;
    bool is_plane_evaluated_ = false;
};

/// Owns its faces, edges and vertices, which stay where they are when the body is moved. A new or moved-from
/// body is empty.
class Body
{
  public:
    Body() = default;
    Body(const Body&) = delete;
    Body& operator=(const Body&) = delete;
    KARV_PLATFORM_API Body(Body&& source) noexcept;
    KARV_PLATFORM_API Body& operator=(Body&& source) noexcept;
    KARV_PLATFORM_API ~Body();

    [[nodiscard]] int faceCount() const noexcept { return static_cast<int>(faces_.size()); }
    /// The first face, null for an empty body.
    [[nodiscard]] Face* faceList() noexcept { return faces_.empty() ? nullptr : faces_.data(); }

    /// Appends the physical edges, one side of each, and the vertices where physical edges end, each once and
    /// each as asked; both in the order in which the faces' loops come to them.
    KARV_PLATFORM_API void getPhysicalEdgesAndVertices(bool with_edges, bool with_vertices,
                                                       std::vector<Edge*>& edges,
                                                       std::vector<Vertex*>& vertices);

    /// Makes every edge non-physical at which the normals of the two faces differ by less than this angle, in
    /// degrees: the surface counts as smooth there. Makes none physical again. Evaluates the planes that are
    /// not; faces that enclose no area keep their edges.
    KARV_PLATFORM_API void markSmoothEdges(double angle);

  private:
    friend class BodyBuilder;

    // None of these grows once the body is made, because the parts point to each other.
    std::vector<Vertex> vertices_;
    std::vector<Edge> edges_;
    std::vector<Face> faces_;
};

} // namespace AModeler
