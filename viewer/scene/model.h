// The viewer's model: faces and lines in double precision and in the units of the file, grouped into pieces
// of one material. It knows nothing of files, windows or the viewport's scaled scene.
#pragma once

#include <cstddef>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
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

/// An axis-aligned box. A new box is empty: its minimum is above its maximum.
struct Box {
    Point min{std::numeric_limits<double>::infinity(), std::numeric_limits<double>::infinity(),
              std::numeric_limits<double>::infinity()};
    Point max{-std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity(),
              -std::numeric_limits<double>::infinity()};

    [[nodiscard]] bool IsEmpty() const { return min.x > max.x; }
    [[nodiscard]] Point Center() const { return min + (max - min) * 0.5; }
    /// The length of the diagonal. The box must not be empty.
    [[nodiscard]] double Diagonal() const { return Length(max - min); }
    /// Grows the box to contain the point.
    void Add(const Point& point);
    /// Grows the box to contain the other one; an empty one changes nothing.
    void Unite(const Box& box);
};

/// One flat polygon, as the viewport expects it: its corners run clockwise as seen from outside; its normal
/// has unit length and points outwards.
struct ModelFace {
    std::vector<Point> corners;
    Point normal;
    /// This face and the one before it are parts of the same face of the file. Edges between the parts of a
    /// face are never shown.
    bool continues = false;
};

/// Makes a face from corners that run counter-clockwise as seen from outside. The normal is the sum over all
/// edges, which is correct for concave outlines, too. Returns nothing for fewer than three corners and for
/// corners that enclose no area: such a face shows nothing and has no normal.
[[nodiscard]] std::optional<ModelFace> MakeFace(std::vector<Point> counterclockwise);

/// A straight line between two points.
struct Segment {
    Point from;
    Point to;
};

/// The length of the mark of a point, as a fraction of the diagonal of the model's box.
inline constexpr double kPointMark = 0.005;

/// Appends the mark of a point: a cross of three lines of this length along the axes. The viewport draws no
/// points and no lines of length 0.
void AppendPointMark(const Point& point, double length, std::vector<Segment>& lines);

/// The parts of a file that belong together: the faces of one solid or one material, or the lines of one
/// drawing entity.
struct Piece {
    std::string name;
    std::vector<std::string> parents; ///< names of the assemblies around it, outermost first
    std::vector<ModelFace> faces;     ///< of a solid, where they close
    /// The edges between faces that the file itself defines, each once, in either direction; their ends have
    /// exactly the coordinates of corners of faces. The list is empty for a part without edges (a whole
    /// sphere). It is absent where the file format has no edges: they are then found by the angle between the
    /// faces.
    std::optional<std::vector<Segment>> edges;
    std::vector<Segment> lines; ///< wires and curves that are not edges of faces, cut into segments
    /// The faces do not close, so each one is visible from both sides.
    bool two_sided = false;
    /// The faces are a part of a closed surface that several pieces form. They point outwards, so the piece
    /// is never made two-sided or turned.
    bool closes_with_others = false;
    int category = 0;
    unsigned char color = 7; ///< palette index
    float alpha = 1.0F;      ///< opacity, 0 to 1
};

/// A piece of faces without lines.
[[nodiscard]] Piece MakePiece(std::string name, std::vector<ModelFace> faces, int category = 0,
                              unsigned char color = 7, float alpha = 1.0F);

/// The number of faces of the piece, where the parts of a face count as one.
[[nodiscard]] std::size_t FaceCountOf(const Piece& piece);

/// Parts of a file of one kind that the model does not contain.
struct LeftOut {
    std::string kind; ///< as named by the file or its format, e.g. "3DSOLID"; may contain any bytes
    std::size_t count = 0;
};

/// A list for messages, like "3 TEXT, 1 3DSOLID": in one line, cut after 500 bytes (`OneLine`). Empty if
/// nothing is left out.
[[nodiscard]] std::string ListOf(const std::vector<LeftOut>& left_out);

/// The maximum number of kinds that are counted separately. A file can name any number of kinds.
inline constexpr std::size_t kMaxLeftOutKinds = 32;
/// The kind under which parts of all further kinds are counted.
inline constexpr std::string_view kOtherKinds = "other part";

struct Model {
    std::string title;
    std::vector<Piece> pieces;
    std::vector<std::string> category_names; ///< by category; may be shorter than the category count
    /// The length of the unit of the coordinates, above 0; absent where the file does not define it.
    std::optional<double> meters_per_unit;
    std::vector<LeftOut> left_out; ///< each kind once

    /// Counts parts of a file that the model does not contain. Nothing happens for a count of 0. At most
    /// `kMaxLeftOutKinds` kinds are kept; parts of further ones are counted as `kOtherKinds`.
    void LeaveOut(std::string_view kind, std::size_t count = 1);

    /// The box of all faces and lines.
    [[nodiscard]] Box Extents() const;
    /// The number of faces, where the parts of a face count as one.
    [[nodiscard]] std::size_t FaceCount() const;
    /// One more than the highest category that is in use or has a name; 0 for an empty model.
    [[nodiscard]] int CategoryCount() const;
    [[nodiscard]] bool IsTranslucent() const;

    /// Adds the pieces of another model. Its categories, with their names, are numbered after those of this
    /// one. Where both models have a unit, the other one is scaled to this one's. A model without pieces and
    /// unit takes the unit of the other one. The parts that were left out of both are summed by kind.
    void Append(Model other);
    /// Moves the translucent pieces behind the opaque ones; within each kind, the order is kept. The viewport
    /// draws in the order of appending and does not sort.
    void PutTranslucentLast();
};

} // namespace viewer
