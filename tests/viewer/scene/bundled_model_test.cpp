#include "viewer/scene/bundled_model.h"

#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <numbers>
#include <set>
#include <tuple>
#include <utility>

namespace viewer
{
namespace
{

using Key = std::tuple<double, double, double>;

Key KeyOf(const Point& p)
{
    // Adding zero turns a negative zero into a positive one.
    return {p.x + 0.0, p.y + 0.0, p.z + 0.0};
}

const Piece& PieceNamed(const Model& model, const std::string& name)
{
    for (const Piece& piece : model.pieces)
        if (piece.name == name)
            return piece;
    throw std::out_of_range(name);
}

/// The volume inside faces whose corners run clockwise seen from outside.
double EnclosedVolume(const Piece& piece)
{
    double six_volumes = 0.0;
    for (const ModelFace& face : piece.faces)
        for (std::size_t i = 1; i + 1 < face.corners.size(); ++i)
            six_volumes -= Dot(face.corners[0], Cross(face.corners[i], face.corners[i + 1]));
    return six_volumes / 6.0;
}

/// The area of a regular polygon of n corners, over the square of its radius.
double UnitArea(int n)
{
    return n / 2.0 * std::sin(2.0 * std::numbers::pi / n);
}

bool HasDent(const ModelFace& face)
{
    const auto& c = face.corners;
    for (std::size_t i = 0; i < c.size(); ++i) {
        const Point& next = c[(i + 1) % c.size()];
        const Point& after = c[(i + 2) % c.size()];
        // At every corner, a clockwise convex outline turns against the normal.
        if (Dot(Cross(next - c[i], after - next), face.normal) > 1e-9)
            return true;
    }
    return false;
}

TEST(BundledModel, EveryPieceIsClosed)
{
    for (const Piece& piece : MakeBundledModel().pieces) {
        std::map<std::pair<Key, Key>, int> edges;
        for (const ModelFace& face : piece.faces)
            for (std::size_t i = 0; i < face.corners.size(); ++i) {
                const Key a = KeyOf(face.corners[i]);
                const Key b = KeyOf(face.corners[(i + 1) % face.corners.size()]);
                ++edges[{a, b}];
                --edges[{b, a}];
            }
        for (const auto& [edge, surplus] : edges)
            ASSERT_EQ(surplus, 0) << piece.name;
    }
}

TEST(BundledModel, EveryFaceIsFlatAndItsNormalIsOfUnitLength)
{
    for (const Piece& piece : MakeBundledModel().pieces)
        for (const ModelFace& face : piece.faces) {
            EXPECT_NEAR(Length(face.normal), 1.0, 1e-12) << piece.name;
            for (const Point& corner : face.corners)
                EXPECT_NEAR(Dot(corner - face.corners.front(), face.normal), 0.0, 1e-9) << piece.name;
        }
}

TEST(BundledModel, CornersRunClockwiseSeenFromOutside)
{
    for (const Piece& piece : MakeBundledModel().pieces) {
        EXPECT_GT(EnclosedVolume(piece), 0.0) << piece.name;
        for (const ModelFace& face : piece.faces) {
            Point area;
            for (std::size_t i = 1; i + 1 < face.corners.size(); ++i)
                area = area + Cross(face.corners[i] - face.corners[0], face.corners[i + 1] - face.corners[0]);
            EXPECT_LT(Dot(area, face.normal), 0.0) << piece.name;
        }
    }
}

TEST(BundledModel, VolumesAreThoseOfTheShapes)
{
    const Model model = MakeBundledModel();
    // A ring of 48 corners between the radii 18 and 23, 56 long.
    EXPECT_NEAR(EnclosedVolume(PieceNamed(model, "bush")), UnitArea(48) * (23.0 * 23.0 - 18.0 * 18.0) * 56.0,
                1e-6);
    // Two rings of 32 corners between 6 and 13, 3 high.
    EXPECT_NEAR(EnclosedVolume(PieceNamed(model, "washers")), 2.0 * UnitArea(32) * (169.0 - 36.0) * 3.0,
                1e-6);
    // The foot: 160 x 72 x 14, less four corners rounded by 24-gons of radius 10 and two holes of 32 corners
    // and radius 7.
    const double foot = 160.0 * 72.0 - (4.0 - UnitArea(24)) * 100.0 - 2.0 * UnitArea(32) * 49.0;
    EXPECT_NEAR(EnclosedVolume(PieceNamed(model, "foot")), foot * 14.0, 1e-6);
    // Two shanks of 32 corners and radius 6, 17 below the head and 2 above it, and two hexagons of radius 11,
    // 9 high.
    const double bolts = 2.0 * (UnitArea(32) * 36.0 * (17.0 + 2.0) + UnitArea(6) * 121.0 * 9.0);
    EXPECT_NEAR(EnclosedVolume(PieceNamed(model, "bolts")), bolts, 1e-6);
}

TEST(BundledModel, StandsOnTheFloorAboveTheOrigin)
{
    const Box box = MakeBundledModel().Extents();
    // The foot is 160 by 72; the shell of radius 40 ends 40 above the bore's axis at 58.
    EXPECT_EQ(box.min, (Point{-80, -36, 0}));
    EXPECT_EQ(box.max, (Point{80, 36, 98}));
}

TEST(BundledModel, HasSixCategoriesInDifferentColors)
{
    const Model model = MakeBundledModel();
    std::set<int> colors;
    for (const Piece& piece : model.pieces)
        colors.insert(piece.color);
    EXPECT_EQ(model.CategoryCount(), 6);
    EXPECT_EQ(colors.size(), 6U);
}

TEST(BundledModel, EveryFaceIsConvex)
{
    for (const Piece& piece : MakeBundledModel().pieces)
        for (const ModelFace& face : piece.faces)
            EXPECT_FALSE(HasDent(face)) << piece.name;
}

} // namespace
} // namespace viewer
