// The host's own model: faces in double precision and in the files' units, sorted into pieces of one
// material. It knows nothing of files, windows or the viewport's scaled scene.
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

/// Faces of one material; one entity of the viewport.
struct Piece {
    std::string name;
    std::vector<ModelFace> faces;
    int category = 0;
    unsigned char color = 7; ///< palette index
    float alpha = 1.0F;      ///< 1 for opaque
};

struct Model {
    std::string title;
    std::vector<Piece> pieces;

    [[nodiscard]] Box Extents() const;
    [[nodiscard]] std::size_t FaceCount() const;
    /// One more than the highest category in use; 0 for an empty model.
    [[nodiscard]] int CategoryCount() const;
    [[nodiscard]] bool IsTranslucent() const;

    /// Adds the pieces of another model; its categories follow those that are here.
    void Append(Model other);
    /// Moves translucent pieces behind the opaque ones, each kind in its order: the viewport draws in the
    /// order of appending and does not sort.
    void PutTranslucentLast();
};

} // namespace viewer
