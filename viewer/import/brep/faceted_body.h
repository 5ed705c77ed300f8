// Collects the facets and edges of a body whose faces are meshed. Faces that share an edge share the corners
// along it, so that a closed solid gives closed facets.
#pragma once

#include "viewer/import/brep/convex_facets.h"
#include "viewer/scene/model.h"
#include "viewer/scene/shared_corners.h"

#include <NCollection_IndexedDataMap.hxx>
#include <TopTools_ShapeMapHasher.hxx>
#include <TopoDS_Edge.hxx>
#include <TopoDS_Face.hxx>
#include <TopoDS_Vertex.hxx>
#include <gp_Trsf.hxx>

#include <array>
#include <cstddef>
#include <optional>
#include <set>
#include <span>
#include <utility>
#include <vector>

class Poly_Triangulation;

namespace viewer
{

/// How closely segments follow curves.
struct BrepTolerance {
    double deflection = 0.0; ///< the maximum distance between a segment and its curve
    double angle = 0.0;      ///< the maximum angle between consecutive segments, in radians
};

/// The faces of one body, as facets. Two kinds of edges are not shown: smooth seams, where a closed surface
/// meets itself, and edges of length 0, such as the tip of a cone. All other edges are shown, smooth or not.
class FacetedBody
{
  public:
    /// Points are transformed by `placement`, which may mirror.
    FacetedBody(const gp_Trsf& placement, const BrepTolerance& tolerance)
        : placement_(placement), tolerance_(tolerance)
    {
    }
    FacetedBody(const FacetedBody&) = delete;
    FacetedBody& operator=(const FacetedBody&) = delete;

    /// Adds the facets and edges of a face; only edges if it has no mesh. `piece` is the number of the piece
    /// that gets them; an edge of several faces belongs to the piece of the first one.
    void AddFace(const TopoDS_Face& face, std::size_t piece = 0);
    [[nodiscard]] std::size_t FacesWithoutMesh() const { return faces_without_mesh_; }
    /// Whether each side of a facet has exactly one facet on its other side, running in the opposite
    /// direction; false without facets.
    [[nodiscard]] bool Closes() const { return !facets_.empty() && OpenFaces().empty(); }
    /// The faces that keep the body from closing: faces without facets, and faces with a facet that has not
    /// exactly one neighbour at each side. Numbered from 0 in the order of `AddFace`. Empty if the body
    /// closes.
    [[nodiscard]] const std::vector<std::size_t>& OpenFaces() const;
    /// Moves the faces and edges into the pieces, by their numbers. If the facets are closed they are turned
    /// outwards, and facets without area are kept; otherwise those are dropped.
    void MoveTo(std::span<Piece> pieces);

  private:
    struct EdgeCorners {
        std::vector<int> corners; ///< along the edge
        bool is_shown = true;
        std::size_t piece = 0;
    };
    struct Facet {
        FacetCorners corners; ///< counter-clockwise
        Point normal;         ///< of the face, for facets without area
        std::size_t face = 0; ///< in order of `AddFace`
        std::size_t piece = 0;
    };
    using Triangles = std::vector<std::array<int, 3>>;

    int NumberOf(const gp_Pnt& point, const gp_Trsf& placement);
    EdgeCorners& EdgeOf(const TopoDS_Edge& edge);
    void SetEnds(const TopoDS_Edge& edge, std::vector<int>& corners);
    void NoteEdges(const TopoDS_Face& face, const Poly_Triangulation* mesh, const gp_Trsf& placement,
                   std::vector<int>& corner_of_node);
    std::vector<int> CutEdge(const TopoDS_Edge& edge);
    Triangles TrianglesOf(const Poly_Triangulation& mesh, const std::vector<int>& corner_of_node,
                          bool turn) const;
    void AddFacets(const TopoDS_Face& face, const Triangles& triangles, const Point& area);
    /// The segments of the face's shown edges, as pairs of corners with the lower number first.
    std::set<std::pair<int, int>> ShownSegmentsOf(const TopoDS_Face& face);
    [[nodiscard]] std::vector<std::size_t> FindOpenFaces() const;
    [[nodiscard]] double SignedVolume() const;

    gp_Trsf placement_;
    BrepTolerance tolerance_;
    PointNumbers corners_;
    NCollection_IndexedDataMap<TopoDS_Shape, EdgeCorners, TopTools_ShapeMapHasher> edges_;
    std::vector<Facet> facets_;
    std::size_t face_count_ = 0;
    mutable std::optional<std::vector<std::size_t>> open_faces_; ///< computed on demand
    std::size_t piece_ = 0;                                      ///< of the face that is added
    std::size_t faces_without_mesh_ = 0;
};

/// Appends the segments of an edge that belongs to no face; none for an unbounded edge.
void CutFreeEdge(const TopoDS_Edge& edge, const gp_Trsf& placement, const BrepTolerance& tolerance,
                 std::vector<Segment>& segments);

} // namespace viewer
