#include "viewer/import/dxf/tolerance_signs.h"

#include "viewer/import/dxf/curve_segments.h"
#include "viewer/scene/affine.h"

#include <vector>

namespace viewer
{

namespace
{

constexpr double kWidth = 1.2;
constexpr double kTolerance = 0.01;
constexpr Point kCenter{0.5, 0.5, 0.0};

/// Draws on a square of side 1, whose left and right margins are 0.1.
class SignDrawing
{
  public:
    void Lines(const std::vector<Point>& corners)
    {
        const Point* last = nullptr;
        for (const Point& corner : corners) {
            if (last != nullptr)
                AppendSegment(Placed(*last), Placed(corner), sign_.glyph.outline);
            last = &corner;
        }
    }
    void Arc(const Point& center, double radius, double start_degrees, double sweep_degrees)
    {
        CutArc({Placed(center),
                {radius, 0.0, 0.0},
                {0.0, radius, 0.0},
                Radians(start_degrees),
                Radians(sweep_degrees)},
               kTolerance, sign_.glyph.outline);
    }
    void Circle(double radius) { Arc(kCenter, radius, 0.0, 360.0); }
    /// An arrow up and to the right.
    void Arrow(const Point& from, const Point& to)
    {
        Lines({from, to});
        Lines({to - Point{0.25, 0.1, 0.0}, to, to - Point{0.1, 0.25, 0.0}});
    }
    void Letter(char32_t letter) { sign_.letter = letter; }

    ToleranceSign Finish()
    {
        sign_.glyph.advance = kWidth;
        return std::move(sign_);
    }

  private:
    static Point Placed(const Point& point) { return point + Point{0.1, 0.0, 0.0}; }

    ToleranceSign sign_;
};

/// Signs of form and direction.
bool DrawForm(char32_t letter, SignDrawing& draw)
{
    switch (letter) {
    case U'a': // angularity
        draw.Lines({{1, 0, 0}, {0, 0, 0}, {0.9, 0.7, 0}});
        break;
    case U'b': // perpendicularity
        draw.Lines({{0, 0, 0}, {1, 0, 0}});
        draw.Lines({{0.5, 0, 0}, {0.5, 1, 0}});
        break;
    case U'c': // flatness
        draw.Lines({{0, 0.2, 0}, {0.7, 0.2, 0}, {1, 0.8, 0}, {0.3, 0.8, 0}, {0, 0.2, 0}});
        break;
    case U'd': // profile of a surface
        draw.Lines({{0, 0.25, 0}, {1, 0.25, 0}});
        draw.Arc({0.5, 0.25, 0}, 0.5, 0.0, 180.0);
        break;
    case U'e': // circularity
        draw.Circle(0.45);
        break;
    case U'f': // parallelism
        draw.Lines({{0.1, 0, 0}, {0.5, 1, 0}});
        draw.Lines({{0.5, 0, 0}, {0.9, 1, 0}});
        break;
    case U'g': // cylindricity
        draw.Circle(0.3);
        draw.Lines({{0, 0, 0}, {0.4, 1, 0}});
        draw.Lines({{0.6, 0, 0}, {1, 1, 0}});
        break;
    case U'k': // profile of a line
        draw.Arc({0.5, 0.25, 0}, 0.5, 0.0, 180.0);
        break;
    case U'u': // straightness
        draw.Lines({{0, 0.5, 0}, {1, 0.5, 0}});
        break;
    default:
        return false;
    }
    return true;
}

/// Signs of place and runout.
bool DrawPlace(char32_t letter, SignDrawing& draw)
{
    switch (letter) {
    case U'h': // circular runout
        draw.Arrow({0.1, 0, 0}, {0.9, 1, 0});
        break;
    case U'i': // symmetry
        draw.Lines({{0.2, 0.8, 0}, {0.8, 0.8, 0}});
        draw.Lines({{0, 0.5, 0}, {1, 0.5, 0}});
        draw.Lines({{0.2, 0.2, 0}, {0.8, 0.2, 0}});
        break;
    case U'j': // position
        draw.Circle(0.3);
        draw.Lines({{0, 0.5, 0}, {1, 0.5, 0}});
        draw.Lines({{0.5, 0, 0}, {0.5, 1, 0}});
        break;
    case U'n': // diameter
        draw.Circle(0.35);
        draw.Lines({{0.2, 0, 0}, {0.8, 1, 0}});
        break;
    case U'r': // concentricity
        draw.Circle(0.25);
        draw.Circle(0.45);
        break;
    case U't': // total runout
        draw.Arrow({0, 0, 0}, {0.6, 0.9, 0});
        draw.Arrow({0.4, 0, 0}, {1, 0.9, 0});
        draw.Lines({{0, 0, 0}, {0.4, 0, 0}});
        break;
    default:
        return false;
    }
    return true;
}

/// Conditions of material: letters in circles.
bool DrawCondition(char32_t letter, SignDrawing& draw)
{
    constexpr char32_t kToCapital = U'a' - U'A';
    if (letter != U'l' && letter != U'm' && letter != U'p' && letter != U's')
        return false;
    draw.Circle(0.5);
    draw.Letter(letter - kToCapital);
    return true;
}

} // namespace

std::optional<ToleranceSign> SignOfTolerance(char32_t letter)
{
    SignDrawing draw;
    if (DrawForm(letter, draw) || DrawPlace(letter, draw) || DrawCondition(letter, draw))
        return draw.Finish();
    return std::nullopt;
}

} // namespace viewer
