// The facets of B-rep faces that were meshed before, and the edges between them. Faces that share an edge get
// the very same corners along it, so that what closes in the file closes here. Files, names and colours are
// not known here.
#pragma once

#include "viewer/import/brep/convex_facets.h"
#include "viewer/scene/model.h"

#include <NCollection_IndexedDataMap.hxx>
#include <TopTools_ShapeMapHasher.hxx>
#include <TopoDS_Edge.hxx>
#include <TopoDS_Face.hxx>
#include <TopoDS_Vertex.hxx>
#include <gp_Trsf.hxx>

#include <array>
#include <map>
#include <set>
#include <tuple>
#include <utility>
#include <vector>

class Poly_Triangulation;

namespace viewer
{

/// Numbers for points: the same one for the same coordinates.
class CornerNumbers
{
  public:
    int NumberOf(const Point& point);
    [[nodiscard]] const Point& At(int number) const { return points_[static_cast<std::size_t>(number)]; }

  private:
    struct IsBefore {
        bool operator()(const Point& a, const Point& b) const
        {
            return std::tie(a.x, a.y, a.z) < std::tie(b.x, b.y, b.z);
        }
    };
    std::map<Point, int, IsBefore> numbers_;
    std::vector<Point> points_;
};

/// How curves are cut into segments.
struct BrepTolerance {
    double deflection = 0.0; ///< the farthest that a segment may be from its curve
    double angle = 0.0;      ///< the most that it may turn from one segment to the next, in radians
};

/// Collects the faces of one solid, or of what is not one. Edges that divide a face from itself (the seams of
/// closed surfaces, where these are smooth) and those without a length (the tip of a cone) are none of its
/// own; all others are, smooth or not.
class FacetedBody
{
  public:
    /// Points are moved by `placement`; a mirroring one is allowed.
    FacetedBody(const gp_Trsf& placement, const BrepTolerance& tolerance)
        : placement_(placement), tolerance_(tolerance)
    {
    }
    FacetedBody(const FacetedBody&) = delete;
    FacetedBody& operator=(const FacetedBody&) = delete;

    /// Facets of the face. One without a mesh has none, but edges all the same. Returns its area, by the
    /// mesh.
    double AddFace(const TopoDS_Face& face);
    /// Whether every edge of a facet has its twin.
    [[nodiscard]] bool Closes() const;
    /// Adds faces and edges to the piece. Where they close they are turned to show their outside. Facets
    /// without area are left out where they do not.
    void MoveTo(Piece& piece);

  private:
    struct OwnEdge {
        std::vector<int> corners; ///< along the edge
        bool is_own = true;
    };
    struct Facet {
        FacetCorners corners; ///< counter-clockwise
        Point normal;         ///< of the face, for facets that have none themselves
    };
    using Triangles = std::vector<std::array<int, 3>>;

    int NumberOf(const gp_Pnt& point, const gp_Trsf& placement);
    OwnEdge& EdgeOf(const TopoDS_Edge& edge);
    void SetEnds(const TopoDS_Edge& edge, std::vector<int>& corners);
    void NoteEdges(const TopoDS_Face& face, const Poly_Triangulation* mesh, const gp_Trsf& placement,
                   std::vector<int>& corner_of_node);
    std::vector<int> CutEdge(const TopoDS_Edge& edge);
    Triangles TrianglesOf(const Poly_Triangulation& mesh, const std::vector<int>& corner_of_node,
                          bool turn) const;
    void AddFacets(const TopoDS_Face& face, const Triangles& triangles, const Point& area);
    /// Between which corners the face's own edges run, the lower number first.
    std::set<std::pair<int, int>> OwnSegmentsOf(const TopoDS_Face& face);
    [[nodiscard]] double SignedVolume() const;

    gp_Trsf placement_;
    BrepTolerance tolerance_;
    CornerNumbers corners_;
    NCollection_IndexedDataMap<TopoDS_Shape, OwnEdge, TopTools_ShapeMapHasher> edges_;
    std::vector<Facet> facets_;
};

/// Appends the segments of an edge that belongs to no face; none for one without end.
void CutFreeEdge(const TopoDS_Edge& edge, const gp_Trsf& placement, const BrepTolerance& tolerance,
                 std::vector<Segment>& segments);

} // namespace viewer
