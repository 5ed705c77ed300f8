#include "platform/modeler/body_builder.h"

#include "platform/modeler/edge_table.h"
#include "platform/modeler/face_splitting.h"
#include "platform/modeler/loop_plane.h"

#include <cmath>
#include <limits>

namespace AModeler
{

namespace
{

constexpr std::size_t kMinCorners = 3; ///< of a loop

std::string FaceText(std::size_t face)
{
    return "face " + std::to_string(face);
}

std::string EdgeText(int from, int to)
{
    return "the edge from point " + std::to_string(from) + " to point " + std::to_string(to);
}

} // namespace

BodyError::~BodyError() = default;

int BodyBuilder::AddPoint(const AcGePoint3d& point)
{
    if (points_.size() >= static_cast<std::size_t>(std::numeric_limits<int>::max()))
        throw BodyError("there are more points than can be counted");
    points_.push_back(point);
    return static_cast<int>(points_.size() - 1);
}

void BodyBuilder::BeginFace()
{
    faces_.push_back(loops_.size());
}

void BodyBuilder::BeginLoop()
{
    if (faces_.empty())
        throw BodyError("a loop begins outside any face");
    loops_.push_back({corners_.size(), corners_.size(), false});
}

void BodyBuilder::AddCorner(int point)
{
    if (loops_.empty() || loops_.back().is_ended)
        throw BodyError("a corner is outside any loop");
    corners_.push_back(point);
    loops_.back().end_corner = corners_.size();
}

void BodyBuilder::EndLoop()
{
    if (loops_.empty() || loops_.back().is_ended)
        throw BodyError("a loop ends that has not begun");
    loops_.back().is_ended = true;
}

void BodyBuilder::AddFace(std::span<const int> outline)
{
    BeginFace();
    BeginLoop();
    corners_.insert(corners_.end(), outline.begin(), outline.end());
    loops_.back().end_corner = corners_.size();
    EndLoop();
}

void BodyBuilder::AddWire(int from, int to)
{
    wires_.emplace_back(from, to);
}

std::vector<int> BodyBuilder::CornersOf(const Loop& loop) const
{
    const auto begin = corners_.begin();
    return {begin + static_cast<std::ptrdiff_t>(loop.first_corner),
            begin + static_cast<std::ptrdiff_t>(loop.end_corner)};
}

std::size_t BodyBuilder::EndLoopOf(std::size_t face) const
{
    return face + 1 < faces_.size() ? faces_[face + 1] : loops_.size();
}

void BodyBuilder::CheckPoints() const
{
    for (std::size_t i = 0; i < points_.size(); ++i) {
        const AcGePoint3d& point = points_[i];
        if (!std::isfinite(point.x) || !std::isfinite(point.y) || !std::isfinite(point.z))
            throw BodyError("point " + std::to_string(i) + " is not finite");
    }
}

void BodyBuilder::CheckLoops() const
{
    for (std::size_t face = 0; face < faces_.size(); ++face) {
        if (faces_[face] == EndLoopOf(face))
            throw BodyError(FaceText(face) + " has no loop");
        for (std::size_t i = faces_[face]; i < EndLoopOf(face); ++i) {
            const Loop& loop = loops_[i];
            if (!loop.is_ended)
                throw BodyError("a loop of " + FaceText(face) + " is open");
            if (loop.end_corner - loop.first_corner < kMinCorners)
                throw BodyError("a loop of " + FaceText(face) + " has under three corners");
            for (std::size_t corner = loop.first_corner; corner < loop.end_corner; ++corner) {
                const int point = corners_[corner];
                if (point < 0 || static_cast<std::size_t>(point) >= points_.size())
                    throw BodyError(FaceText(face) + " names point " + std::to_string(point) +
                                    ", which is not there");
            }
        }
    }
}

void BodyBuilder::CheckWires() const
{
    for (std::size_t wire = 0; wire < wires_.size(); ++wire) {
        const auto [from, to] = wires_[wire];
        for (const int point : {from, to})
            if (point < 0 || static_cast<std::size_t>(point) >= points_.size())
                throw BodyError("wire " + std::to_string(wire) + " names point " + std::to_string(point) +
                                ", which is not there");
        if (from == to)
            throw BodyError("wire " + std::to_string(wire) + " from point " + std::to_string(from) +
                            " to itself has no length");
    }
}

EdgeTable BodyBuilder::CheckEdges() const
{
    EdgeTable uses(corners_.size());
    const auto for_each_edge = [&](const auto& visit) {
        for (std::size_t face = 0; face < faces_.size(); ++face)
            for (std::size_t i = faces_[face]; i < EndLoopOf(face); ++i) {
                const Loop& loop = loops_[i];
                for (std::size_t corner = loop.first_corner; corner < loop.end_corner; ++corner) {
                    const std::size_t next = corner + 1 < loop.end_corner ? corner + 1 : loop.first_corner;
                    visit(face, corners_[corner], corners_[next]);
                }
            }
    };
    for_each_edge([&](std::size_t face, int from, int to) {
        if (from == to)
            throw BodyError(EdgeText(from, to) + " of " + FaceText(face) + " has no length");
        if (const auto known = uses.Add(from, to, face))
            throw BodyError(EdgeText(from, to) + " is used twice in that direction, by " + FaceText(*known) +
                            " and " + FaceText(face));
    });
    for_each_edge([&](std::size_t face, int from, int to) {
        if (!uses.Find(to, from))
            throw BodyError(EdgeText(from, to) + " of " + FaceText(face) +
                            " has no twin, so the body is open");
    });
    return uses;
}

BodyBuilder::Facets BodyBuilder::SplitFaces() const
{
    Facets facets;
    facets.corners.reserve(corners_.size());
    facets.ends.reserve(faces_.size());
    facets.sources.reserve(faces_.size());
    const auto append = [&](auto begin, auto end, std::size_t face) {
        facets.corners.insert(facets.corners.end(), begin, end);
        facets.ends.push_back(facets.corners.size());
        facets.sources.push_back(face);
    };
    std::vector<Outline> loops;
    for (std::size_t face = 0; face < faces_.size(); ++face) {
        const Loop& outline = loops_[faces_[face]];
        const bool is_simple = EndLoopOf(face) == faces_[face] + 1;
        // Most faces of large bodies are triangles: they are not copied to be examined.
        if (is_simple && outline.end_corner - outline.first_corner == kMinCorners) {
            append(corners_.data() + outline.first_corner, corners_.data() + outline.end_corner, face);
            continue;
        }
        loops.clear();
        for (std::size_t i = faces_[face]; i < EndLoopOf(face); ++i)
            loops.push_back(CornersOf(loops_[i]));
        if (is_simple && IsConvex(loops.front(), points_)) {
            append(loops.front().begin(), loops.front().end(), face);
            continue;
        }
        const auto parts = SplitIntoConvex(loops, points_);
        if (!parts)
            throw BodyError(FaceText(face) +
                            " has loops that cross, touch, run in wrong directions or enclose no area");
        for (const Outline& part : *parts)
            append(part.begin(), part.end(), face);
    }
    if (facets.ends.size() > static_cast<std::size_t>(std::numeric_limits<int>::max()))
        throw BodyError("there are more faces than can be counted");
    return facets;
}

void BodyBuilder::FillBody(const Facets& facets, Body& body) const
{
    body.vertices_.resize(points_.size());
    for (std::size_t i = 0; i < points_.size(); ++i)
        body.vertices_[i].point_ = points_[i];
    body.faces_.resize(facets.ends.size());
    body.edges_.resize(facets.corners.size() + 2 * wires_.size());
    std::size_t corner = 0;
    for (std::size_t i = 0; i < body.faces_.size(); ++i) {
        Face& face = body.faces_[i];
        face.next_ = i + 1 < body.faces_.size() ? &face + 1 : nullptr;
        face.first_edge_ = &body.edges_[corner];
        face.edge_count_ = static_cast<int>(facets.ends[i] - corner);
        for (; corner < facets.ends[i]; ++corner) {
            Edge& edge = body.edges_[corner];
            edge.vertex_ = &body.vertices_[static_cast<std::size_t>(facets.corners[corner])];
            edge.next_ = corner + 1 < facets.ends[i] ? &edge + 1 : face.first_edge_;
            edge.face_ = &face;
        }
    }
}

void BodyBuilder::FillWires(Body& body) const
{
    Edge* half = body.edges_.data() + (body.edges_.size() - 2 * wires_.size());
    for (const auto& [from, to] : wires_) {
        Edge& there = *half++;
        Edge& back = *half++;
        there.vertex_ = &body.vertices_[static_cast<std::size_t>(from)];
        back.vertex_ = &body.vertices_[static_cast<std::size_t>(to)];
        there.next_ = there.partner_ = &back;
        back.next_ = back.partner_ = &there;
    }
}

void BodyBuilder::SharePlanes(const Facets& facets, Body& body) const
{
    for (std::size_t i = 0; i < body.faces_.size(); ++i) {
        const std::size_t source = facets.sources[i];
        const bool is_split = (i > 0 && facets.sources[i - 1] == source) ||
                              (i + 1 < body.faces_.size() && facets.sources[i + 1] == source);
        if (!is_split)
            continue;
        Face& face = body.faces_[i];
        face.plane_ = i > 0 && facets.sources[i - 1] == source
                          ? body.faces_[i - 1].plane_
                          : PlaneOfLoop([&](const auto& visit) {
                                for (const int corner : CornersOf(loops_[faces_[source]]))
                                    visit(points_[static_cast<std::size_t>(corner)]);
                            });
        face.is_plane_evaluated_ = true;
    }
}

void BodyBuilder::PairEdges(const Facets& facets, const EdgeTable& uses, Body& body)
{
    const auto point_of = [&](const Vertex* vertex) {
        return static_cast<int>(vertex - body.vertices_.data());
    };
    const auto source_of = [&](const Edge& edge) {
        return facets.sources[static_cast<std::size_t>(edge.face_ - body.faces_.data())];
    };
    // An edge between two of the caller's faces is an edge of the solid. All others lie within one face.
    // Another face may have an edge between the same points, so these are paired face by face.
    const std::size_t edge_count = facets.corners.size();
    EdgeTable given(edge_count);
    EdgeTable added(0);
    for (std::size_t first = 0; first < edge_count;) {
        const std::size_t source = source_of(body.edges_[first]);
        std::size_t end = first;
        while (end < edge_count && source_of(body.edges_[end]) == source)
            ++end;
        bool has_added = false;
        for (std::size_t i = first; i < end; ++i) {
            Edge& edge = body.edges_[i];
            const int from = point_of(edge.vertex_);
            const int to = point_of(edge.next_->vertex_);
            edge.is_physical_ = uses.Find(from, to) == source && uses.Find(to, from) != source;
            if (!edge.is_physical_ && !has_added) {
                added = EdgeTable(end - first);
                has_added = true;
            }
            EdgeTable& table = edge.is_physical_ ? given : added;
            table.Add(from, to, i);
            if (const auto partner = table.Find(to, from)) {
                edge.partner_ = &body.edges_[*partner];
                edge.partner_->partner_ = &edge;
            }
        }
        first = end;
    }
}

Body BodyBuilder::Build() const
{
    CheckPoints();
    CheckLoops();
    CheckWires();
    const EdgeTable uses = CheckEdges();
    const Facets facets = SplitFaces();
    Body body;
    FillBody(facets, body);
    SharePlanes(facets, body);
    PairEdges(facets, uses, body);
    FillWires(body);
    return body;
}

} // namespace AModeler
