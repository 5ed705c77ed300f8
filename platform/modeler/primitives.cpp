#include "platform/modeler/ready_bodies.h"

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

/// The vector at a length from 1 to 2, which products of huge and of tiny ones would not keep; zero stays
/// zero.
AcGeVector3d Shortened(const AcGeVector3d& vector)
{
    const double largest = std::max({std::fabs(vector.x), std::fabs(vector.y), std::fabs(vector.z)});
    return largest > 0.0 ? vector / largest : vector;
}

/// The loops with the outline clockwise as seen from where the way leads, and the holes the other way round.
Profile Oriented(Profile profile, const AcGeVector3d& way)
{
    const AcGeVector3d direction = Shortened(way);
    for (std::size_t i = 0; i < profile.size(); ++i) {
        const Plane plane = PlaneOfLoop([&](const auto& visit) {
            for (const AcGePoint3d& corner : profile[i])
                visit(corner);
        });
        const double side = plane.normal.dotProduct(direction);
        // What rounding leaves of a right angle.
        constexpr double kNone = 1e-12;
        if (!(std::fabs(side) > kNone))
            throw BodyError("loop " + std::to_string(i) + " of the profile encloses no area across the way");
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

/// Whether two edges of the closed line cross; points in order.
bool CrossesItself(const std::vector<TurnedPoint>& profile)
{
    const auto side = [](const TurnedPoint& a, const TurnedPoint& b, const TurnedPoint& c) {
        return (b.radius - a.radius) * (c.height - a.height) - (b.height - a.height) * (c.radius - a.radius);
    };
    const std::size_t count = profile.size();
    for (std::size_t i = 0; i < count; ++i)
        for (std::size_t k = i + 1; k < count; ++k) {
            const TurnedPoint& a = profile[i];
            const TurnedPoint& b = profile[(i + 1) % count];
            const TurnedPoint& c = profile[k];
            const TurnedPoint& d = profile[(k + 1) % count];
            if (side(a, b, c) * side(a, b, d) < 0.0 && side(c, d, a) * side(c, d, b) < 0.0)
                return true;
        }
    return false;
}

/// Twice the profile's area; positive where it runs counter-clockwise with the radius to the right and the
/// height up.
double SignedArea(const std::vector<TurnedPoint>& profile)
{
    double sum = 0.0;
    for (std::size_t i = 0; i < profile.size(); ++i) {
        const TurnedPoint& a = profile[i];
        const TurnedPoint& b = profile[(i + 1) % profile.size()];
        sum += a.radius * b.height - b.radius * a.height;
    }
    return sum;
}

void CheckTurned(const std::vector<TurnedPoint>& profile, int segments)
{
    constexpr int kFewest = 3;
    if (segments < kFewest)
        throw BodyError("a turn has under three steps");
    if (profile.size() < static_cast<std::size_t>(kFewest))
        throw BodyError("the profile has under three points");
    for (const TurnedPoint& point : profile)
        if (!(point.radius >= 0.0) || !std::isfinite(point.radius) || !std::isfinite(point.height))
            throw BodyError("the profile has a point that is not finite or lies beyond the axis");
    if (!(SignedArea(profile) != 0.0))
        throw BodyError("the profile encloses no area");
    if (CrossesItself(profile))
        throw BodyError("the profile crosses itself");
}

/// The points of each step of one profile point: one for all steps where it lies on the axis.
std::vector<int> AddRing(BodyBuilder& builder, const TurnedPoint& point, int segments)
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

/// Makes the edges between the steps of each band of faces non-physical.
void MarkSteps(Body& body, const std::vector<int>& band_sizes)
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

Body MakePrism(const Profile& profile, const AcGeVector3d& way, FaceSplitting splitting)
{
    if (profile.empty())
        throw BodyError("the profile has no loop");
    BodyBuilder builder;
    std::vector<std::pair<int, int>> loops; // the first point at the near end, and how many
    for (const std::vector<AcGePoint3d>& loop : Oriented(profile, way)) {
        const int count = static_cast<int>(loop.size());
        const int first = count == 0 ? 0 : builder.AddPoint(loop.front());
        for (int i = 1; i < count; ++i)
            builder.AddPoint(loop[static_cast<std::size_t>(i)]);
        for (const AcGePoint3d& point : loop)
            builder.AddPoint(point + way);
        loops.emplace_back(first, count);
    }
    // The far cap is seen from where the way leads, the near one from the other side.
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
    return builder.Build(splitting);
}

Body MakeRevolution(const std::vector<TurnedPoint>& profile, int segments)
{
    CheckTurned(profile, segments);
    std::vector<TurnedPoint> counterclockwise = profile;
    if (SignedArea(profile) < 0.0)
        std::reverse(counterclockwise.begin(), counterclockwise.end());
    BodyBuilder builder;
    std::vector<std::vector<int>> rings;
    rings.reserve(counterclockwise.size());
    for (const TurnedPoint& point : counterclockwise)
        rings.push_back(AddRing(builder, point, segments));
    std::vector<int> band_sizes(rings.size());
    for (std::size_t i = 0; i < rings.size(); ++i) {
        const std::vector<int>& from = rings[i];
        const std::vector<int>& to = rings[(i + 1) % rings.size()];
        for (std::size_t step = 0; step < from.size(); ++step) {
            const std::size_t next = (step + 1) % from.size();
            // Steps lead from x to y; outside, the profile's way has the solid on its left.
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
    MarkSteps(body, band_sizes);
    return body;
}

} // namespace AModeler
