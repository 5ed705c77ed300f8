#include "viewer/import/brep/faceted_body.h"

#include "viewer/scene/affine.h"

#include <BRepAdaptor_Curve.hxx>
#include <BRepAdaptor_Surface.hxx>
#include <BRepLProp_SLProps.hxx>
#include <BRep_Tool.hxx>
#include <GCPnts_TangentialDeflection.hxx>
#include <Geom2d_Curve.hxx>
#include <GeomLib_IsPlanarSurface.hxx>
#include <Geom_Surface.hxx>
#include <Poly_PolygonOnTriangulation.hxx>
#include <Poly_Triangulation.hxx>
#include <Precision.hxx>
#include <TopExp.hxx>
#include <TopExp_Explorer.hxx>
#include <TopLoc_Location.hxx>
#include <TopTools_MapOfShape.hxx>
#include <TopoDS.hxx>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <optional>

namespace viewer
{

namespace
{

Point ToPoint(const gp_Pnt& point)
{
    return {point.X(), point.Y(), point.Z()};
}

/// The corners of segments along the edge's curve, within the tolerance.
std::vector<gp_Pnt> CutCurve(const TopoDS_Edge& edge, const BrepTolerance& tolerance)
{
    double first = 0.0;
    double last = 0.0;
    BRep_Tool::Range(edge, first, last);
    std::vector<gp_Pnt> points;
    if (BRep_Tool::Degenerated(edge) || !BRep_Tool::IsGeometric(edge) || Precision::IsInfinite(first) ||
        Precision::IsInfinite(last))
        return points;
    const BRepAdaptor_Curve curve(edge);
    const GCPnts_TangentialDeflection cut(curve, tolerance.angle, tolerance.deflection);
    for (int i = 1; i <= cut.NbPoints(); ++i)
        points.push_back(cut.Value(i));
    return points;
}

std::optional<gp_Dir> NormalAt(const BRepAdaptor_Surface& surface, const gp_Pnt2d& at)
{
    BRepLProp_SLProps properties(surface, at.X(), at.Y(), 1, Precision::Confusion());
    if (!properties.IsNormalDefined())
        return std::nullopt;
    return properties.Normal();
}

/// The edges that occur more than once in a face: the seams of closed surfaces. Whether an edge lies on the
/// seam of the surface is not used, because two faces of the same surface can meet there.
TopTools_MapOfShape SeamsOf(const TopoDS_Face& face)
{
    TopTools_MapOfShape seen;
    TopTools_MapOfShape seams;
    for (TopExp_Explorer it(face, TopAbs_EDGE); it.More(); it.Next())
        if (!seen.Add(it.Current()))
            seams.Add(it.Current());
    return seams;
}

/// Whether the face is smooth across its seam, as a cylinder is.
bool IsSmoothSeam(const TopoDS_Edge& edge, const TopoDS_Face& face)
{
    constexpr double kSmooth = Radians(1.0);
    double first = 0.0;
    double last = 0.0;
    const auto side = [&](TopAbs_Orientation orientation) {
        return BRep_Tool::CurveOnSurface(TopoDS::Edge(edge.Oriented(orientation)), face, first, last);
    };
    const auto left = side(TopAbs_FORWARD);
    const auto right = side(TopAbs_REVERSED);
    if (left.IsNull() || right.IsNull())
        return true;
    const BRepAdaptor_Surface surface(face, Standard_False);
    const double middle = 0.5 * (first + last);
    const auto left_normal = NormalAt(surface, left->Value(middle));
    const auto right_normal = NormalAt(surface, right->Value(middle));
    return !left_normal || !right_normal || left_normal->Angle(*right_normal) < kSmooth;
}

/// Whether the face's surface is planar, of any type of surface.
bool IsPlane(const TopoDS_Face& face)
{
    TopLoc_Location location;
    const auto& surface = BRep_Tool::Surface(face, location);
    return !surface.IsNull() && GeomLib_IsPlanarSurface(surface, Precision::Confusion()).IsPlanar();
}

/// A side of a facet.
struct Side {
    std::uint64_t edge; ///< `EdgeKey` of its corners
    bool is_forward;    ///< runs from the lower number to the higher one
    std::size_t face;
};

} // namespace

int FacetedBody::NumberOf(const gp_Pnt& point, const gp_Trsf& placement)
{
    return corners_.NumberOf(ToPoint(point.Transformed(placement)));
}

FacetedBody::EdgeCorners& FacetedBody::EdgeOf(const TopoDS_Edge& edge)
{
    if (EdgeCorners* known = edges_.ChangeSeek(edge))
        return *known;
    return edges_.ChangeFromIndex(edges_.Add(edge, {.corners = {}, .is_shown = true, .piece = piece_}));
}

void FacetedBody::SetEnds(const TopoDS_Edge& edge, std::vector<int>& corners)
{
    const auto forward = TopoDS::Edge(edge.Oriented(TopAbs_FORWARD));
    const TopoDS_Vertex first = TopExp::FirstVertex(forward);
    const TopoDS_Vertex last = TopExp::LastVertex(forward);
    if (!first.IsNull())
        corners.front() = NumberOf(BRep_Tool::Pnt(first), placement_);
    if (!last.IsNull())
        corners.back() = NumberOf(BRep_Tool::Pnt(last), placement_);
}

std::vector<int> FacetedBody::CutEdge(const TopoDS_Edge& edge)
{
    std::vector<int> corners;
    for (const gp_Pnt& point : CutCurve(edge, tolerance_))
        corners.push_back(NumberOf(point, placement_));
    if (!corners.empty())
        SetEnds(edge, corners);
    return corners;
}

void FacetedBody::NoteEdges(const TopoDS_Face& face, const Poly_Triangulation* mesh, const gp_Trsf& placement,
                            std::vector<int>& corner_of_node)
{
    TopLoc_Location location;
    const auto& triangulation = BRep_Tool::Triangulation(face, location);
    const TopTools_MapOfShape seams = SeamsOf(face);
    for (TopExp_Explorer it(face, TopAbs_EDGE); it.More(); it.Next()) {
        const TopoDS_Edge& edge = TopoDS::Edge(it.Current());
        const bool is_degenerate = BRep_Tool::Degenerated(edge);
        EdgeCorners& known = EdgeOf(edge);
        if (is_degenerate || (seams.Contains(edge) && IsSmoothSeam(edge, face)))
            known.is_shown = false;
        if (mesh == nullptr)
            continue;
        const auto& polygon = BRep_Tool::PolygonOnTriangulation(edge, triangulation, location);
        if (polygon.IsNull())
            continue;
        const auto count = static_cast<std::size_t>(polygon->NbNodes());
        if (known.corners.empty()) {
            for (int i = 1; i <= polygon->NbNodes(); ++i)
                known.corners.push_back(NumberOf(mesh->Node(polygon->Node(i)), placement));
            SetEnds(edge, known.corners);
            if (is_degenerate)
                std::fill(known.corners.begin(), known.corners.end(), known.corners.front());
        }
        // The library's mesher cuts a shared edge at the same points in all faces. Meshes from files can
        // differ.
        if (known.corners.size() != count)
            continue;
        for (std::size_t i = 0; i < count; ++i)
            corner_of_node[static_cast<std::size_t>(polygon->Node(static_cast<int>(i) + 1))] =
                known.corners[i];
    }
}

FacetedBody::Triangles FacetedBody::TrianglesOf(const Poly_Triangulation& mesh,
                                                const std::vector<int>& corner_of_node, bool turn) const
{
    Triangles triangles;
    triangles.reserve(static_cast<std::size_t>(mesh.NbTriangles()));
    for (int i = 1; i <= mesh.NbTriangles(); ++i) {
        std::array<int, 3> nodes{};
        mesh.Triangle(i).Get(nodes[0], nodes[1], nodes[2]);
        if (turn)
            std::swap(nodes[1], nodes[2]);
        std::array<int, 3> corners{};
        for (std::size_t k = 0; k < 3; ++k)
            corners.at(k) = corner_of_node[static_cast<std::size_t>(nodes.at(k))];
        // At the tip of a cone two corners of a triangle coincide. The triangle is dropped, and its other two
        // sides cancel out.
        if (corners[0] != corners[1] && corners[1] != corners[2] && corners[2] != corners[0])
            triangles.push_back(corners);
    }
    return triangles;
}

void FacetedBody::AddFace(const TopoDS_Face& face, std::size_t piece)
{
    ++face_count_;
    open_faces_.reset();
    piece_ = piece;
    TopLoc_Location location;
    const auto& mesh = BRep_Tool::Triangulation(face, location);
    const gp_Trsf placement = placement_ * location.Transformation();
    std::vector<int> corner_of_node(mesh.IsNull() ? 0 : static_cast<std::size_t>(mesh->NbNodes()) + 1, -1);
    NoteEdges(face, mesh.get(), placement, corner_of_node);
    if (mesh.IsNull()) {
        ++faces_without_mesh_;
        return;
    }
    for (std::size_t node = 1; node < corner_of_node.size(); ++node)
        if (corner_of_node[node] < 0)
            corner_of_node[node] = NumberOf(mesh->Node(static_cast<int>(node)), placement);
    const bool turn = (face.Orientation() == TopAbs_REVERSED) != placement.IsNegative();
    const Triangles triangles = TrianglesOf(*mesh, corner_of_node, turn);

    Point sum;
    for (const auto& [a, b, c] : triangles) {
        const Point area = Cross(corners_.At(b) - corners_.At(a), corners_.At(c) - corners_.At(a));
        sum = sum + area;
    }
    AddFacets(face, triangles, sum);
}

void FacetedBody::AddFacets(const TopoDS_Face& face, const Triangles& triangles, const Point& area)
{
    const double length = Length(area);
    const Point normal = length > 0.0 ? area * (1.0 / length) : Point{0.0, 0.0, 1.0};
    if (triangles.size() > 1 && length > 0.0 && IsPlane(face)) {
        const std::set<std::pair<int, int>> shown = ShownSegmentsOf(face);
        const auto point_of = [this](int corner) { return corners_.At(corner); };
        const auto must_stay = [&](int a, int b) { return shown.contains(std::minmax(a, b)); };
        for (FacetCorners& corners : JoinIntoConvexPolygons(triangles, point_of, normal, must_stay))
            facets_.push_back({std::move(corners), normal, face_count_ - 1, piece_});
        return;
    }
    for (const auto& triangle : triangles)
        facets_.push_back({{triangle.begin(), triangle.end()}, normal, face_count_ - 1, piece_});
}

std::set<std::pair<int, int>> FacetedBody::ShownSegmentsOf(const TopoDS_Face& face)
{
    std::set<std::pair<int, int>> segments;
    for (TopExp_Explorer it(face, TopAbs_EDGE); it.More(); it.Next()) {
        const EdgeCorners& edge = EdgeOf(TopoDS::Edge(it.Current()));
        for (std::size_t i = 1; edge.is_shown && i < edge.corners.size(); ++i)
            segments.insert(std::minmax(edge.corners[i - 1], edge.corners[i]));
    }
    return segments;
}

const std::vector<std::size_t>& FacetedBody::OpenFaces() const
{
    if (!open_faces_)
        open_faces_ = FindOpenFaces();
    return *open_faces_;
}

std::vector<std::size_t> FacetedBody::FindOpenFaces() const
{
    std::vector<Side> sides;
    sides.reserve(3 * facets_.size());
    for (const Facet& facet : facets_)
        ForEachEdge(facet.corners, [&](int from, int to) {
            sides.push_back({EdgeKey(from, to), from < to, facet.face});
        });
    std::ranges::sort(sides, {}, &Side::edge);
    std::vector<bool> is_open(face_count_, false);
    std::vector<bool> has_facets(face_count_, false);
    bool closes = true;
    for (auto begin = sides.begin(); begin != sides.end();) {
        const auto end =
            std::find_if(begin, sides.end(), [&](const Side& side) { return side.edge != begin->edge; });
        const bool is_paired = end - begin == 2 && begin[0].is_forward != begin[1].is_forward;
        for (; begin != end; ++begin) {
            has_facets[begin->face] = true;
            if (!is_paired)
                is_open[begin->face] = true;
        }
        closes = closes && is_paired;
    }
    std::vector<std::size_t> faces;
    for (std::size_t face = 0; face < face_count_ && !closes; ++face)
        if (is_open[face] || !has_facets[face])
            faces.push_back(face);
    return faces;
}

double FacetedBody::SignedVolume() const
{
    const Point origin = corners_.At(facets_.front().corners.front());
    double sixfold = 0.0;
    for (const Facet& facet : facets_) {
        const Point first = corners_.At(facet.corners.front()) - origin;
        for (std::size_t i = 1; i + 1 < facet.corners.size(); ++i)
            sixfold += Dot(first, Cross(corners_.At(facet.corners[i]) - origin,
                                        corners_.At(facet.corners[i + 1]) - origin));
    }
    return sixfold / 6.0;
}

void FacetedBody::MoveTo(std::span<Piece> pieces)
{
    const bool closes = Closes();
    const bool is_inside_out = closes && SignedVolume() < 0.0;
    for (Facet& facet : facets_) {
        if (is_inside_out) {
            std::reverse(facet.corners.begin(), facet.corners.end());
            facet.normal = facet.normal * -1.0;
        }
        std::vector<Point> corners;
        corners.reserve(facet.corners.size());
        for (const int corner : facet.corners)
            corners.push_back(corners_.At(corner));
        Piece& piece = pieces[facet.piece];
        if (auto face = MakeFace(corners)) {
            piece.faces.push_back(std::move(*face));
        } else if (closes) {
            std::reverse(corners.begin(), corners.end());
            piece.faces.push_back({std::move(corners), facet.normal});
        }
    }
    for (Piece& piece : pieces)
        if (!piece.edges)
            piece.edges.emplace();
    for (int i = 1; i <= edges_.Extent(); ++i) {
        EdgeCorners& edge = edges_.ChangeFromIndex(i);
        if (!edge.is_shown)
            continue;
        if (edge.corners.empty())
            edge.corners = CutEdge(TopoDS::Edge(edges_.FindKey(i)));
        std::optional<std::vector<Segment>>& shown = pieces[edge.piece].edges;
        for (std::size_t k = 1; shown && k < edge.corners.size(); ++k)
            if (edge.corners[k - 1] != edge.corners[k])
                shown->push_back({corners_.At(edge.corners[k - 1]), corners_.At(edge.corners[k])});
    }
    facets_.clear();
    edges_.Clear();
}

void CutFreeEdge(const TopoDS_Edge& edge, const gp_Trsf& placement, const BrepTolerance& tolerance,
                 std::vector<Segment>& segments)
{
    const std::vector<gp_Pnt> points = CutCurve(edge, tolerance);
    for (std::size_t i = 1; i < points.size(); ++i) {
        const Segment segment{ToPoint(points[i - 1].Transformed(placement)),
                              ToPoint(points[i].Transformed(placement))};
        if (segment.from != segment.to)
            segments.push_back(segment);
    }
}

} // namespace viewer
