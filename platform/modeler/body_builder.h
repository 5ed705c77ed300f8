// How bodies are made from shared points and polygons. What is not a closed solid is refused with a reason.
#pragma once

#include "platform/export.h"
#include "platform/modeler/body.h"

#include <cstddef>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

namespace AModeler
{

class EdgeTable;

/// Why no body could be made; the text is half a sentence that names faces and points by their numbers, from
/// 0.
class KARV_PLATFORM_API BodyError : public std::runtime_error
{
  public:
    explicit BodyError(const std::string& reason) : std::runtime_error(reason) {}
    ~BodyError() override;
};

/// What becomes of a face that a fan from its first corner would not fill: a concave one, or one with holes.
enum class FaceSplitting {
    /// Several faces, all convex and with one plane; the edges between them are not physical.
    ConvexFacets,
    /// One face: its holes are joined to its outline by edges that run there and back and are not physical. A
    /// concave outline stays as it is.
    Bridges,
};

/// Collects points and faces; `Build` makes the body. Time and memory are linear in the number of corners;
/// the time of a face that is split can grow as the square of its own. One thread.
class KARV_PLATFORM_API BodyBuilder
{
  public:
    /// Returns the point's number, counted from 0. Faces that share a point must name the same number.
    int AddPoint(const AcGePoint3d& point);

    /// Begins a face. Its first loop is the outline, clockwise as seen from outside; further ones are holes,
    /// the other way round.
    void BeginFace();
    /// Begins a loop of the face begun last. Throws BodyError where there is none.
    void BeginLoop();
    /// The next corner of the loop, by the point's number. Throws BodyError outside a loop.
    void AddCorner(int point);
    /// Closes the loop: its last corner is joined to its first. Throws BodyError outside a loop.
    void EndLoop();
    /// A whole face without holes.
    void AddFace(std::span<const int> outline);

    /// Makes the body of all faces so far; the builder keeps them. No face at all makes an empty body.
    ///
    /// Edges are physical but where a face meets itself, as along a bridge to a hole. Faces of one loop that
    /// enclose no area stay as they are.
    ///
    /// Throws BodyError, and makes nothing, for a point that is not finite; for a face without a loop; for a
    /// loop that is not ended, has under three corners or names a point that is not there; for an edge from a
    /// point to itself, one that is used twice in one direction and one that is not used in the other; and
    /// for a face to be split whose loops cross or run in wrong directions.
    [[nodiscard]] Body Build(FaceSplitting splitting = FaceSplitting::ConvexFacets) const;

  private:
    struct Loop {
        std::size_t first_corner = 0;
        std::size_t end_corner = 0;
        bool is_ended = false;
    };

    /// The outlines of the body's faces, one after the other.
    struct Facets {
        std::vector<int> corners;
        std::vector<std::size_t> ends;    ///< of each one's corners
        std::vector<std::size_t> sources; ///< the face that each one is a part of
    };

    [[nodiscard]] std::vector<int> CornersOf(const Loop& loop) const;
    [[nodiscard]] std::size_t EndLoopOf(std::size_t face) const;
    void CheckPoints() const;
    void CheckLoops() const;
    /// Returns the faces that use the edges.
    [[nodiscard]] EdgeTable CheckEdges() const;
    [[nodiscard]] Facets SplitFaces(FaceSplitting splitting) const;
    void LayOut(const Facets& facets, Body& body) const;
    void SharePlanes(const Facets& facets, Body& body) const;
    static void JoinEdges(const Facets& facets, const EdgeTable& uses, Body& body);

    std::vector<AcGePoint3d> points_;
    std::vector<int> corners_;
    std::vector<Loop> loops_;
    std::vector<std::size_t> faces_; ///< the first loop of each
};

} // namespace AModeler
