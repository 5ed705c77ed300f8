#include "viewer/scene/bundled_model.h"

#include "viewer/scene/extrusion.h"

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
constexpr double kBoltDistance = 60.0; ///< of each bolt from the middle
constexpr double kBoltHole = 7.0;      ///< radii from here on
constexpr double kShank = 6.0;
constexpr double kWasher = 13.0;
constexpr double kHexagon = 11.0;
constexpr double kBore = 23.0;
constexpr double kBushBore = 18.0;
constexpr double kBoss = 33.0;
constexpr double kShell = 40.0;
constexpr double kBoreHeight = 58.0; ///< of its axis above the floor
constexpr double kHousingHalfWidth = 19.0;
constexpr double kBossHalfWidth = 25.0;
constexpr double kBushHalfWidth = 28.0;

// Palette indices, of middling values: the light adds half of white to what is seen squarely.
constexpr unsigned char kFootColor = 155;    ///< dark blue-grey
constexpr unsigned char kHousingColor = 153; ///< dull blue
constexpr unsigned char kRibColor = 123;     ///< dull green-blue
constexpr unsigned char kBushColor = 42;     ///< brass
constexpr unsigned char kWasherColor = 251;  ///< dark grey
constexpr unsigned char kBoltColor = 252;    ///< grey

/// Lying on the floor, pushed upwards.
constexpr Frame kFloor{{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
/// Standing, seen from the front; pushed along -y.
constexpr Frame kFront{{0, 0, 0}, {1, 0, 0}, {0, 0, 1}, {0, -1, 0}};
/// Standing, seen from the right; pushed along x.
constexpr Frame kSide{{0, 0, 0}, {0, 1, 0}, {0, 0, 1}, {1, 0, 0}};

void Add(Outline& outline, const Outline& more)
{
    outline.insert(outline.end(), more.begin(), more.end());
}

Outline Reversed(const Outline& outline)
{
    return {outline.rbegin(), outline.rend()};
}

Outline MirroredInU(Outline outline)
{
    for (PlanePoint& point : outline)
        point.u = -point.u;
    return Reversed(outline);
}

Outline MirroredInV(Outline outline)
{
    for (PlanePoint& point : outline)
        point.v = -point.v;
    return Reversed(outline);
}

/// Moves the ends of an outline that should lie on an axis exactly there, so that its mirror image meets it.
void PutEndsOnUAxis(Outline& arc)
{
    arc.front().v = 0.0;
    arc.back().v = 0.0;
}

void PutEndsOnVAxis(Outline& arc)
{
    arc.front().u = 0.0;
    arc.back().u = 0.0;
}

/// The foot from above: two halves that meet along the line through both bolt holes, so that neither has a
/// hole.
std::vector<Outline> FootTiles()
{
    Outline left_hole = Arc({-kBoltDistance, 0}, kBoltHole, 180, 0, 16);
    Outline right_hole = Arc({kBoltDistance, 0}, kBoltHole, 180, 0, 16);
    PutEndsOnUAxis(left_hole);
    PutEndsOnUAxis(right_hole);
    const double u = kFootLength / 2;
    const double v = kFootWidth / 2;
    Outline half{{-u, 0}};
    Add(half, left_hole);
    Add(half, right_hole);
    half.push_back({u, 0});
    Add(half, Arc({u - kFootCorner, v - kFootCorner}, kFootCorner, 0, 90, 6));
    Add(half, Arc({-u + kFootCorner, v - kFootCorner}, kFootCorner, 90, 180, 6));
    return {half, MirroredInV(half)};
}

/// The housing from the front: right and left half of a shell around the bore, which flows into the foot by a
/// hollow.
std::vector<Outline> HousingTiles()
{
    constexpr double kNeck = 34.0; ///< half the width between shell and foot
    constexpr double kHollow = 12.0;
    Outline bore = Arc({0, kBoreHeight}, kBore, 90, -90, 24);
    Outline shell = Arc({0, kBoreHeight}, kShell, -30, 90, 16);
    PutEndsOnVAxis(bore);
    shell.back().u = 0.0;
    Outline half{{0, kFootHeight}};
    Add(half, Reversed(Arc({kNeck + kHollow, kFootHeight + kHollow}, kHollow, 180, 270, 8)));
    Add(half, shell);
    Add(half, bore);
    return {half, MirroredInU(half)};
}

/// A rib from the right: it stands behind the boss and is hollowed out towards its free edge.
Outline RibOutline()
{
    constexpr double kTop = 44.0;
    constexpr double kLip = 4.0;
    const double reach = kFootWidth / 2 - 3.0;
    const double hollow = reach - kHousingHalfWidth - 1.0;
    Outline rib{{kHousingHalfWidth - 1.0, kFootHeight}, {reach, kFootHeight}};
    Add(rib, Reversed(Arc({reach, kFootHeight + kLip + hollow}, hollow, 180, 270, 8)));
    rib.push_back({kHousingHalfWidth + 1.0, kTop});
    rib.push_back({kHousingHalfWidth - 1.0, kTop});
    return rib;
}

std::vector<Outline> HexagonTile(double u)
{
    Outline corners = Arc({u, 0}, kHexagon, 0, 360, 6);
    corners.pop_back();
    return {corners};
}

std::vector<Outline> RoundTile(double u, double radius)
{
    Outline points = Arc({u, 0}, radius, 0, 360, 32);
    points.pop_back();
    return {points};
}

void AddSolid(Piece& piece, std::vector<ModelFace> faces)
{
    std::move(faces.begin(), faces.end(), std::back_inserter(piece.faces));
}

Piece Ribs()
{
    Piece ribs = MakePiece("ribs", {}, 2, kRibColor);
    constexpr double kHalfThickness = 4.0;
    for (const double x : {-22.0, 22.0}) {
        AddSolid(ribs, Extrude({RibOutline()}, kSide, x - kHalfThickness, x + kHalfThickness));
        AddSolid(ribs, Extrude({MirroredInU(RibOutline())}, kSide, x - kHalfThickness, x + kHalfThickness));
    }
    return ribs;
}

Piece Housing()
{
    Piece housing = MakePiece(
        "housing", Extrude(HousingTiles(), kFront, -kHousingHalfWidth, kHousingHalfWidth), 1, kHousingColor);
    const auto boss = RingTiles({0, kBoreHeight}, kBore, kBoss, 48);
    AddSolid(housing, Extrude(boss, kFront, kHousingHalfWidth, kBossHalfWidth));
    AddSolid(housing, Extrude(boss, kFront, -kBossHalfWidth, -kHousingHalfWidth));
    return housing;
}

Piece Washers()
{
    constexpr double kThickness = 3.0;
    Piece washers = MakePiece("washers", {}, 4, kWasherColor);
    for (const double x : {-kBoltDistance, kBoltDistance})
        AddSolid(washers, Extrude(RingTiles({x, 0}, kShank, kWasher, 32), kFloor, kFootHeight,
                                  kFootHeight + kThickness));
    return washers;
}

Piece Bolts()
{
    constexpr double kHeadFrom = kFootHeight + 3.0;
    constexpr double kHeadHeight = 9.0;
    constexpr double kTipHeight = 2.0;
    Piece bolts = MakePiece("bolts", {}, 5, kBoltColor);
    for (const double x : {-kBoltDistance, kBoltDistance}) {
        AddSolid(bolts, Extrude(RoundTile(x, kShank), kFloor, 0.0, kHeadFrom));
        AddSolid(bolts, Extrude(HexagonTile(x), kFloor, kHeadFrom, kHeadFrom + kHeadHeight));
        AddSolid(bolts, Extrude(RoundTile(x, kShank), kFloor, kHeadFrom + kHeadHeight,
                                kHeadFrom + kHeadHeight + kTipHeight));
    }
    return bolts;
}

} // namespace

Model MakeBundledModel()
{
    Model model;
    model.title = "pillow block";
    model.pieces.push_back(MakePiece("foot", Extrude(FootTiles(), kFloor, 0.0, kFootHeight), 0, kFootColor));
    model.pieces.push_back(Housing());
    model.pieces.push_back(Ribs());
    model.pieces.push_back(MakePiece(
        "bush",
        Extrude(RingTiles({0, kBoreHeight}, kBushBore, kBore, 48), kFront, -kBushHalfWidth, kBushHalfWidth),
        3, kBushColor));
    model.pieces.push_back(Washers());
    model.pieces.push_back(Bolts());
    return model;
}

} // namespace viewer
