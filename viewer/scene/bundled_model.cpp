#include "viewer/scene/bundled_model.h"

#include "viewer/scene/prism.h"

#include <iterator>
#include <utility>

namespace viewer
{

namespace
{

// All lengths in millimetres.
constexpr double kFootLength = 160.0;
constexpr double kFootWidth = 72.0;
constexpr double kFootHeight = 14.0;
constexpr double kFootCorner = 10.0;
constexpr double kBoltDistance = 60.0; ///< from the middle of the foot to each bolt
constexpr double kBoltHoleRadius = 7.0;
constexpr double kShankRadius = 6.0;
constexpr double kWasherRadius = 13.0;
constexpr double kHexagonRadius = 11.0;
constexpr double kBoreRadius = 23.0;
constexpr double kBushBoreRadius = 18.0;
constexpr double kBossRadius = 33.0;
constexpr double kShellRadius = 40.0;
constexpr double kBoreHeight = 58.0; ///< from the floor to the axis of the bore
constexpr double kHousingHalfWidth = 19.0;
constexpr double kBossHalfWidth = 25.0;
constexpr double kBushHalfWidth = 28.0;

// Palette indices of medium brightness: the light adds half of white to a face that is seen head-on.
constexpr unsigned char kFootColor = 155;    ///< dark blue-grey
constexpr unsigned char kHousingColor = 153; ///< dull blue
constexpr unsigned char kRibColor = 123;     ///< dull green-blue
constexpr unsigned char kBushColor = 42;     ///< brass
constexpr unsigned char kWasherColor = 251;  ///< dark grey
constexpr unsigned char kBoltColor = 252;    ///< grey

/// Profiles seen from above; heights grow upwards.
constexpr Frame kFloor{{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
/// Profiles seen from the front; heights grow along -y.
constexpr Frame kFront{{0, 0, 0}, {1, 0, 0}, {0, 0, 1}, {0, -1, 0}};
/// Profiles seen from the right; heights grow along x.
constexpr Frame kSide{{0, 0, 0}, {0, 1, 0}, {0, 0, 1}, {1, 0, 0}};

constexpr int kBoreCorners = 48;
constexpr int kBoltCorners = 32;

void Add(Outline& outline, const Outline& more)
{
    outline.insert(outline.end(), more.begin(), more.end());
}

Outline MirroredInU(Outline outline)
{
    for (PlanePoint& point : outline)
        point.u = -point.u;
    return outline;
}

/// A rectangle with rounded corners and a hole for each bolt.
Profile FootProfile()
{
    constexpr double kU = kFootLength / 2 - kFootCorner;
    constexpr double kV = kFootWidth / 2 - kFootCorner;
    constexpr int kSteps = 6;
    Outline outline = Arc({kU, kV}, kFootCorner, 0, 90, kSteps);
    Add(outline, Arc({-kU, kV}, kFootCorner, 90, 180, kSteps));
    Add(outline, Arc({-kU, -kV}, kFootCorner, 180, 270, kSteps));
    Add(outline, Arc({kU, -kV}, kFootCorner, 270, 360, kSteps));
    return {outline, RegularPolygon({-kBoltDistance, 0}, kBoltHoleRadius, kBoltCorners),
            RegularPolygon({kBoltDistance, 0}, kBoltHoleRadius, kBoltCorners)};
}

/// A round shell about the bore, whose neck widens towards the foot in a hollow on each side.
Profile HousingProfile()
{
    constexpr double kNeck = 34.0; ///< half of the width between shell and foot
    constexpr double kHollow = 12.0;
    constexpr int kSteps = 8;
    constexpr double kHollowU = kNeck + kHollow;
    constexpr double kHollowV = kFootHeight + kHollow;
    Outline outline = Arc({kHollowU, kHollowV}, kHollow, 270, 180, kSteps);
    Add(outline, Arc({0, kBoreHeight}, kShellRadius, -30, 210, 4 * kSteps));
    Add(outline, Arc({-kHollowU, kHollowV}, kHollow, 0, -90, kSteps));
    return {outline, RegularPolygon({0, kBoreHeight}, kBoreRadius, kBoreCorners)};
}

/// The outline of a rib that stands behind the boss; a hollow takes away its free edge.
Outline RibOutline()
{
    constexpr double kTop = 44.0;
    constexpr double kLip = 4.0;
    constexpr int kSteps = 8;
    const double reach = kFootWidth / 2 - 3.0;
    const double hollow = reach - kHousingHalfWidth - 1.0;
    Outline rib{{kHousingHalfWidth - 1.0, kFootHeight}, {reach, kFootHeight}};
    Add(rib, Arc({reach, kFootHeight + kLip + hollow}, hollow, 270, 180, kSteps));
    rib.push_back({kHousingHalfWidth + 1.0, kTop});
    rib.push_back({kHousingHalfWidth - 1.0, kTop});
    return rib;
}

Profile Ring(PlanePoint center, double inner_radius, double outer_radius, int corners)
{
    return {RegularPolygon(center, outer_radius, corners), RegularPolygon(center, inner_radius, corners)};
}

void AddSolid(Piece& piece, std::vector<ModelFace> faces)
{
    std::move(faces.begin(), faces.end(), std::back_inserter(piece.faces));
}

Piece Foot()
{
    return MakePiece("foot", PrismFaces(FootProfile(), kFloor, 0.0, kFootHeight), 0, kFootColor);
}

Piece Housing()
{
    Piece housing =
        MakePiece("housing", PrismFaces(HousingProfile(), kFront, -kHousingHalfWidth, kHousingHalfWidth), 1,
                  kHousingColor);
    const Profile boss = Ring({0, kBoreHeight}, kBoreRadius, kBossRadius, kBoreCorners);
    AddSolid(housing, PrismFaces(boss, kFront, kHousingHalfWidth, kBossHalfWidth));
    AddSolid(housing, PrismFaces(boss, kFront, -kBossHalfWidth, -kHousingHalfWidth));
    return housing;
}

Piece Ribs()
{
    constexpr double kHalfThickness = 4.0;
    Piece ribs = MakePiece("ribs", {}, 2, kRibColor);
    for (const double x : {-22.0, 22.0})
        for (const Outline& outline : {RibOutline(), MirroredInU(RibOutline())})
            AddSolid(ribs, PrismFaces({outline}, kSide, x - kHalfThickness, x + kHalfThickness));
    return ribs;
}

Piece Bush()
{
    const Profile ring = Ring({0, kBoreHeight}, kBushBoreRadius, kBoreRadius, kBoreCorners);
    return MakePiece("bush", PrismFaces(ring, kFront, -kBushHalfWidth, kBushHalfWidth), 3, kBushColor);
}

Piece Washers()
{
    constexpr double kThickness = 3.0;
    Piece washers = MakePiece("washers", {}, 4, kWasherColor);
    for (const double x : {-kBoltDistance, kBoltDistance})
        AddSolid(washers, PrismFaces(Ring({x, 0}, kShankRadius, kWasherRadius, kBoltCorners), kFloor,
                                     kFootHeight, kFootHeight + kThickness));
    return washers;
}

Piece Bolts()
{
    constexpr double kHeadFrom = kFootHeight + 3.0;
    constexpr double kHeadHeight = 9.0;
    constexpr double kTipHeight = 2.0;
    Piece bolts = MakePiece("bolts", {}, 5, kBoltColor);
    for (const double x : {-kBoltDistance, kBoltDistance}) {
        const Outline shank = RegularPolygon({x, 0}, kShankRadius, kBoltCorners);
        const Outline head = RegularPolygon({x, 0}, kHexagonRadius, 6);
        AddSolid(bolts, PrismFaces({shank}, kFloor, 0.0, kHeadFrom));
        AddSolid(bolts, PrismFaces({head}, kFloor, kHeadFrom, kHeadFrom + kHeadHeight));
        AddSolid(bolts,
                 PrismFaces({shank}, kFloor, kHeadFrom + kHeadHeight, kHeadFrom + kHeadHeight + kTipHeight));
    }
    return bolts;
}

} // namespace

Model MakeBundledModel()
{
    Model model;
    model.title = "pillow block";
    model.pieces = {Foot(), Housing(), Ribs(), Bush(), Washers(), Bolts()};
    return model;
}

} // namespace viewer
