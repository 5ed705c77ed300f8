// The host's own model: faces and lines in double precision and in the files' units, sorted into pieces of
// one material. It knows nothing of files, windows or the viewport's scaled scene.
#pragma once

#include <array>
#include <cstddef>
#include <limits>
#include <optional>
#include <string>
#include <vector>

namespace viewer
{

/// A point or a direction, in the units of the file.
struct Point {
    double x = 0.0;
    double y = 0.0;
    double z = 0.0;

    bool operator==(const Point&) const = default;
};

[[nodiscard]] Point operator+(const Point& a, const Point& b);
[[nodiscard]] Point operator-(const Point& a, const Point& b);
[[nodiscard]] Point operator*(const Point& a, double factor);
[[nodiscard]] double Dot(const Point& a, const Point& b);
[[nodiscard]] Point Cross(const Point& a, const Point& b);
[[nodiscard]] double Length(const Point& a);
[[nodiscard]] bool IsFinite(const Point& a);

/// An axis-aligned box; a new one is empty, its minimum above its maximum.
struct Box {
    Point min{std::numeric_limits<double>::infinity(), std::numeric_limits<double>::infinity(),
              std::numeric_limits<double>::infinity()};
    Point max{-std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity(),
              -std::numeric_limits<double>::infinity()};

    [[nodiscard]] bool IsEmpty() const { return min.x > max.x; }
    [[nodiscard]] Point Center() const { return min + (max - min) * 0.5; }
    /// The length of the diagonal; for a box that is not empty.
    [[nodiscard]] double Diagonal() const { return Length(max - min); }
    [[nodiscard]] std::array<Point, 8> Corners() const;
    void Add(const Point& point);
    /// An empty one changes nothing.
    void Unite(const Box& box);
};

/// One polygon, ready for the viewport: its corners run clockwise as seen from outside, its normal is of unit
/// length and points outwards.
struct ModelFace {
    std::vector<Point> corners;
    Point normal;
};

/// Makes a face from corners that run counter-clockwise as seen from outside, with the normal of the whole
/// polygon (the sum over its edges, right for concave outlines too). Nothing for fewer than three corners, or
/// where they enclose no area: such a face shows nothing and has no normal.
[[nodiscard]] std::optional<ModelFace> MakeFace(std::vector<Point> counterclockwise);

/// A straight line between two points.
struct Segment {
    Point from;
    Point to;
};

/// What belongs together in a file: the faces of one solid or of one material, lines of one drawing entity.
struct Piece {
    std::string name;
    std::vector<std::string> parents; ///< names of the assemblies that hold it, outermost first
    std::vector<ModelFace> faces;     ///< of a solid where they close
    /// The edges between the faces that the file itself has, each once, in either direction, between corners
    /// of faces at exactly the same coordinates; an empty list for a part without any (a whole sphere). None
    /// where the file knows nothing of edges: they are then found by the angle between the faces.
    std::optional<std::vector<Segment>> edges;
    std::vector<Segment> lines; ///< drawn for themselves: wires and curves, cut into segments
    int category = 0;
    unsigned char color = 7; ///< palette index
    float alpha = 1.0F;      ///< 1 for opaque
};

/// A piece of faces alone, of one material.
[[nodiscard]] Piece MakePiece(std::string name, std::vector<ModelFace> faces, int category = 0,
                              unsigned char color = 7, float alpha = 1.0F);

struct Model {
    std::string title;
    std::vector<Piece> pieces;
    std::vector<std::string> category_names; ///< by category; may be shorter than there are categories
    /// How long the unit of the coordinates is, where the file says so; above 0.
    std::optional<double> meters_per_unit;

    /// The box of all faces and lines.
    [[nodiscard]] Box Extents() const;
    [[nodiscard]] std::size_t FaceCount() const;
    /// One more than the highest category that is in use or has a name; 0 for an empty model.
    [[nodiscard]] int CategoryCount() const;
    [[nodiscard]] bool IsTranslucent() const;

    /// Adds the pieces of another model; its categories follow those that are here, with their names. Where
    /// both models know the length of their units, the other is scaled to this one's; where this one is empty
    /// its unit becomes the other's.
    void Append(Model other);
    /// Moves translucent pieces behind the opaque ones, each kind in its order: the viewport draws in the
    /// order of appending and does not sort.
    void PutTranslucentLast();
};

} // namespace viewer
