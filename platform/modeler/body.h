// Solids as polyhedral boundary representations: faces bounded by loops of edges, edges that join vertices.
// Wires are edges that bound no face. Bodies are made by BodyBuilder (body_builder.h). Drawing is not known
// here.
//
// An Edge is a half-edge: it runs along the loop of one face, and its partner runs the other way along the
// loop of the neighbouring face. Loops run clockwise as seen from outside. Normals point outwards. Lengths
// are in model units. Any thread, one at a time for each body.
#pragma once

#include "platform/export.h"
#include "platform/host/ge/geometry.h"
#include "platform/modeler/plane.h"

#include <cstddef>
#include <vector>

namespace AModeler
{

class BodyBuilder;
class Edge;
class Face;

/// A corner of the solid.
class Vertex
{
  public:
    [[nodiscard]] const AcGePoint3d& point() const noexcept { return point_; }

  private:
    friend class BodyBuilder;
    AcGePoint3d point_;
};

/// A half-edge: one side of an edge of the solid.
class Edge
{
  public:
    /// Where the edge starts. It ends where the next edge of its loop starts.
    [[nodiscard]] Vertex* vertex() const noexcept { return vertex_; }
    /// The next edge of the loop. The last edge is followed by the first. For a wire, the other half.
    [[nodiscard]] Edge* next() const noexcept { return next_; }
    /// The other half of the edge, in the loop of the neighbouring face, or of the same face where an outline
    /// runs to a hole and back along one edge.
    [[nodiscard]] Edge* partner() const noexcept { return partner_; }
    /// Null for a wire.
    [[nodiscard]] Face* face() const noexcept { return face_; }
    /// Whether it is a visible edge of the solid. Edges that only divide a face or a smooth surface are not.
    [[nodiscard]] bool isPhysical() const noexcept { return is_physical_; }
    /// Sets it for both halves of the edge.
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
    /// The plane that was evaluated last; zeros before the first time.
    [[nodiscard]] const Plane& plane() const noexcept { return plane_; }
    /// Computes the plane from the whole loop by Newell's method, so that corners in one line are allowed.
    /// The normal has unit length and points to the side from which the loop runs clockwise. The plane goes
    /// through the mean of the corners. A loop that encloses no area, or whose corners are not a finite
    /// distance apart, gives the zero plane.
    KARV_PLATFORM_API void evaluatePlane();

  private:
    friend class BodyBuilder;
    Edge* first_edge_ = nullptr;
    Face* next_ = nullptr;
    Plane plane_;
    int edge_count_ = 0;
    bool is_plane_evaluated_ = false;
};

/// A solid, wires, or both. It owns its faces, edges and vertices; moving the body keeps their addresses. A
/// new body and one that was moved from are empty.
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
    /// The first face, null for a body without faces.
    [[nodiscard]] Face* faceList() noexcept { return faces_.empty() ? nullptr : faces_.data(); }

    /// Appends the physical edges, one half of each, where `with_edges` is set, and the vertices at their
    /// ends, each once, where `with_vertices` is set. Both are in the order in which the faces' loops reach
    /// them; wires come last, in the order in which they were added.
    KARV_PLATFORM_API void getPhysicalEdgesAndVertices(bool with_edges, bool with_vertices,
                                                       std::vector<Edge*>& edges,
                                                       std::vector<Vertex*>& vertices);

    /// Makes an edge non-physical where the normals of its two faces differ by less than `angle` degrees:
    /// the surface counts as smooth there. Makes no edge physical. Evaluates the planes that are not
    /// evaluated yet. Wires and the edges of a face that encloses no area stay as they are.
    KARV_PLATFORM_API void markSmoothEdges(double angle);

  private:
    friend class BodyBuilder;

    // Never resized once the body is made: the parts point to each other.
    std::vector<Vertex> vertices_;
    std::vector<Edge> edges_;
    std::vector<Face> faces_;
};

} // namespace AModeler
