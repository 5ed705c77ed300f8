#include "platform/modeler/primitives.h"

#include "platform/modeler/loop_plane.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <string>
#include <unordered_map>
#include <utility>

namespace AModeler
{

namespace
{

/// The vector scaled so that its largest component is 1: products of huge and of tiny vectors would
/// overflow or vanish. Zero stays zero.
AcGeVector3d Rescaled(const AcGeVector3d& vector)
{
    const double largest = std::max({std::fabs(vector.x), std::fabs(vector.y), std::fabs(vector.z)});
    return largest > 0.0 ? vector / largest : vector;
}

/// The loops turned so that, seen from the far end of the sweep, the outline runs clockwise and the holes
/// counter-clockwise.
Profile Oriented(Profile profile, const AcGeVector3d& sweep)
{
    const AcGeVector3d direction = Rescaled(sweep);
    for (std::size_t i = 0; i < profile.size(); ++i) {
        const Plane plane = PlaneOfLoop([&](const auto& visit) {
            for (const AcGePoint3d& corner : profile[i])
                visit(corner);
        });
        const double side = plane.normal.dotProduct(direction);
        constexpr double kMinSide = 1e-12; // rounding leaves less than this of a right angle
        if (!(std::fabs(side) > kMinSide))
            throw BodyError("loop " + std::to_string(i) +
                            " of the profile encloses no area across the direction");
        const bool is_clockwise = side > 0.0;
        if (is_clockwise != (i == 0))
            std::reverse(profile[i].begin(), profile[i].end());
    }
    return profile;
}

void AddLoop(BodyBuilder& builder, int first, int count, bool backwards)
{
    builder.BeginLoop();
    for (int i = 0; i < count; ++i)
        builder.AddCorner(backwards ? first + count - 1 - i : first + i);
    builder.EndLoop();
}

/// Whether two edges of the closed profile cross.
bool CrossesItself(const std::vector<ProfilePoint>& profile)
{
    const auto side = [](const ProfilePoint& a, const ProfilePoint& b, const ProfilePoint& c) {
        return (b.radius - a.radius) * (c.height - a.height) - (b.height - a.height) * (c.radius - a.radius);
    };
    const std::size_t count = profile.size();
    for (std::size_t i = 0; i < count; ++i)
        for (std::size_t k = i + 1; k < count; ++k) {
            const ProfilePoint& a = profile[i];
            const ProfilePoint& b = profile[(i + 1) % count];
            const ProfilePoint& c = profile[k];
            const ProfilePoint& d = profile[(k + 1) % count];
            if (side(a, b, c) * side(a, b, d) < 0.0 && side(c, d, a) * side(c, d, b) < 0.0)
                return true;
        }
    return false;
}

/// Twice the profile's area; positive where the profile runs counter-clockwise, the radius to the right and
/// the height up.
double SignedArea(const std::vector<ProfilePoint>& profile)
{
    double sum = 0.0;
    for (std::size_t i = 0; i < profile.size(); ++i) {
        const ProfilePoint& a = profile[i];
        const ProfilePoint& b = profile[(i + 1) % profile.size()];
        sum += a.radius * b.height - b.radius * a.height;
    }
    return sum;
}

void CheckRevolution(const std::vector<ProfilePoint>& profile, int segments)
{
    constexpr int kMinCount = 3;
    if (segments < kMinCount)
        throw BodyError("a turn has under three steps");
    if (profile.size() < static_cast<std::size_t>(kMinCount))
        throw BodyError("the profile has under three points");
    for (const ProfilePoint& point : profile)
        if (!(point.radius >= 0.0) || !std::isfinite(point.radius) || !std::isfinite(point.height))
            throw BodyError("the profile has a point that is not finite or lies beyond the axis");
    if (!(SignedArea(profile) != 0.0))
        throw BodyError("the profile encloses no area");
    if (CrossesItself(profile))
        throw BodyError("the profile crosses itself");
}

/// The numbers of one profile point at each step; the same number at all steps where it lies on the axis.
std::vector<int> AddRing(BodyBuilder& builder, const ProfilePoint& point, int segments)
{
    constexpr double kTurn = 2.0 * std::numbers::pi;
    std::vector<int> ring;
    if (point.radius == 0.0) {
        ring.assign(static_cast<std::size_t>(segments), builder.AddPoint({0.0, 0.0, point.height}));
        return ring;
    }
    for (int step = 0; step < segments; ++step) {
        const double angle = kTurn * step / segments;
        ring.push_back(
            builder.AddPoint({point.radius * std::cos(angle), point.radius * std::sin(angle), point.height}));
    }
    return ring;
}

/// Makes the edges between neighbouring steps non-physical. The faces come in bands, one for each edge of the
/// profile, of `band_sizes` faces.
void SmoothSteps(Body& body, const std::vector<int>& band_sizes)
{
    std::unordered_map<const Face*, std::size_t> band_of_face;
    Face* face = body.faceList();
    for (std::size_t band = 0; band < band_sizes.size(); ++band)
        for (int i = 0; i < band_sizes[band]; ++i, face = face->next())
            band_of_face.emplace(face, band);
    for (face = body.faceList(); face != nullptr; face = face->next()) {
        Edge* edge = face->edgeLoop();
        for (int i = 0; i < face->edgeCount(); ++i, edge = edge->next())
            if (band_of_face.at(face) == band_of_face.at(edge->partner()->face()))
                edge->setPhysical(false);
    }
}

} // namespace

Body MakeBox(const AcGePoint3d& min, const AcGePoint3d& max)
{
    const bool is_box = min.x < max.x && min.y < max.y && min.z < max.z;
    if (!is_box)
        throw BodyError("the first corner of a box must be below the second on every axis");
    const Profile profile{{min, {max.x, min.y, min.z}, {max.x, max.y, min.z}, {min.x, max.y, min.z}}};
    return MakePrism(profile, {0.0, 0.0, max.z - min.z});
}

Body MakePrism(const Profile& profile, const AcGeVector3d& direction)
{
    if (profile.empty())
        throw BodyError("the profile has no loop");
    BodyBuilder builder;
    std::vector<std::pair<int, int>> loops; // the first point at the near end, and the number of points
    for (const std::vector<AcGePoint3d>& loop : Oriented(profile, direction)) {
        const int count = static_cast<int>(loop.size());
        const int first = count == 0 ? 0 : builder.AddPoint(loop.front());
        for (int i = 1; i < count; ++i)
            builder.AddPoint(loop[static_cast<std::size_t>(i)]);
        for (const AcGePoint3d& point : loop)
            builder.AddPoint(point + direction);
        loops.emplace_back(first, count);
    }
    // The far cap is seen from the far end, the near cap from the other side.
    builder.BeginFace();
    for (const auto& [first, count] : loops)
        AddLoop(builder, first + count, count, false);
    builder.BeginFace();
    for (const auto& [first, count] : loops)
        AddLoop(builder, first, count, true);
    for (const auto& [first, count] : loops)
        for (int i = 0; i < count; ++i) {
            const int next = (i + 1) % count;
            const std::array side{first + i, first + next, first + count + next, first + count + i};
            builder.AddFace(side);
        }
    return builder.Build();
}

Body MakeRevolution(const std::vector<ProfilePoint>& profile, int segments)
{
    CheckRevolution(profile, segments);
    std::vector<ProfilePoint> counterclockwise = profile;
    if (SignedArea(profile) < 0.0)
        std::reverse(counterclockwise.begin(), counterclockwise.end());
    BodyBuilder builder;
    std::vector<std::vector<int>> rings;
    rings.reserve(counterclockwise.size());
    for (const ProfilePoint& point : counterclockwise)
        rings.push_back(AddRing(builder, point, segments));
    std::vector<int> band_sizes(rings.size());
    for (std::size_t i = 0; i < rings.size(); ++i) {
        const std::vector<int>& from = rings[i];
        const std::vector<int>& to = rings[(i + 1) % rings.size()];
        for (std::size_t step = 0; step < from.size(); ++step) {
            const std::size_t next = (step + 1) % from.size();
            // Steps go from x towards y, and the profile has the solid on its left: clockwise from outside.
            std::vector<int> corners{from[step], to[step], to[next], from[next]};
            corners.erase(std::unique(corners.begin(), corners.end()), corners.end());
            if (corners.size() > 1 && corners.front() == corners.back())
                corners.pop_back();
            if (corners.size() > 2) {
                builder.AddFace(corners);
                ++band_sizes[i];
            }
        }
    }
    Body body = builder.Build();
    SmoothSteps(body, band_sizes);
    return body;
}

} // namespace AModeler
