// Makes bodies from shared points, polygons and wires. Faces that do not form a closed solid are refused with
// a reason.
#pragma once

#include "platform/export.h"
#include "platform/modeler/body.h"

#include <cstddef>
#include <span>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace AModeler
{

class EdgeTable;

/// Why a body could not be made. `what()` is one line without an end mark, which names faces and points by
/// their numbers from 0.
class KARV_PLATFORM_API BodyError : public std::runtime_error
{
  public:
    explicit BodyError(const std::string& reason) : std::runtime_error(reason) {}
    ~BodyError() override;
};

/// Collects points, faces and wires; `Build` makes the body. Time and memory are linear in the number of
/// corners. The time of a face that is split can grow as the square of its corners. Any thread, one at a time
/// for each builder.
class KARV_PLATFORM_API BodyBuilder
{
  public:
    /// Adds a point and returns its number, counted from 0. Faces that share a point must use the same
    /// number. Throws BodyError where there are more points than an int can count.
    int AddPoint(const AcGePoint3d& point);

    /// Begins a face. Its first loop is the outline, clockwise as seen from outside. Further loops are holes,
    /// counter-clockwise.
    void BeginFace();
    /// Begins a loop of the face begun last. Throws BodyError where no face was begun.
    void BeginLoop();
    /// Adds a corner to the loop, by the point's number. Throws BodyError outside a loop.
    void AddCorner(int point);
    /// Ends the loop: its last corner is joined to its first. Throws BodyError outside a loop.
    void EndLoop();
    /// Adds a face without holes.
    void AddFace(std::span<const int> outline);

    /// Adds a wire: a physical edge without faces, between two points by their numbers. It may lie where
    /// another edge does.
    void AddWire(int from, int to);

    /// Makes the body of all faces and wires so far; the builder keeps them. Without any the body is empty.
    ///
    /// A face that a fan from its first corner would not fill, because it is concave or has holes, becomes
    /// several convex faces with one plane. The edges between these are not physical, nor are those where a
    /// face meets itself, as where an outline runs to a hole and back along one edge. All other edges are
    /// physical. A face of one loop that encloses no area stays as it is.
    ///
    /// Throws BodyError, and makes nothing, for a point that is not finite; for a face without a loop; for
    /// a loop that is not ended, has under three corners or names a point that does not exist; for an edge
    /// from a point to itself, an edge that is used twice in one direction, and an edge that is not used in
    /// the other direction; for a wire from a point to itself or that names a point that does not exist; and
    /// for a face that has to be split and whose loops cross or run in wrong directions.
    [[nodiscard]] Body Build() const;

  private:
    struct Loop {
        std::size_t first_corner = 0;
        std::size_t end_corner = 0;
        bool is_ended = false;
    };

    /// The outlines of the body's faces, one after another.
    struct Facets {
        std::vector<int> corners;
        std::vector<std::size_t> ends;    ///< where the corners of each outline end
        std::vector<std::size_t> sources; ///< the number of the face that each outline is a part of
    };

    [[nodiscard]] std::vector<int> CornersOf(const Loop& loop) const;
    [[nodiscard]] std::size_t EndLoopOf(std::size_t face) const;
    void CheckPoints() const;
    void CheckLoops() const;
    void CheckWires() const;
    /// Returns the edges with the face that uses each.
    [[nodiscard]] EdgeTable CheckEdges() const;
    [[nodiscard]] Facets SplitFaces() const;
    void FillBody(const Facets& facets, Body& body) const;
    /// Makes the last edges of the body the halves of the wires.
    void FillWires(Body& body) const;
    void SharePlanes(const Facets& facets, Body& body) const;
    static void PairEdges(const Facets& facets, const EdgeTable& uses, Body& body);

    std::vector<AcGePoint3d> points_;
    std::vector<int> corners_;
    std::vector<Loop> loops_;
    std::vector<std::size_t> faces_; ///< the number of the first loop of each
    std::vector<std::pair<int, int>> wires_;
};

} // namespace AModeler
