#include "viewer/scene/surface_sides.h"

#include "tests/viewer/test_support.h"
#include "viewer/scene/bundled_model.h"
#include "viewer/scene/feature_edges.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>

namespace viewer
{
namespace
{

using testing::IsEmpty;
using testing::SizeIs;

std::vector<ModelFace> BoxFaces(const Point& min, const Point& max)
{
    return BoxModel(BoxOf(min, max)).pieces.front().faces;
}

std::vector<ModelFace> Turned(std::vector<ModelFace> faces)
{
    for (ModelFace& face : faces) {
        std::reverse(face.corners.begin(), face.corners.end());
        face.normal = face.normal * -1.0;
    }
    return faces;
}

std::vector<ModelFace> operator+(std::vector<ModelFace> a, const std::vector<ModelFace>& b)
{
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

std::vector<Piece> Settled(const std::vector<ModelFace>& faces)
{
    Model model;
    model.pieces.push_back(MakePiece("part", faces, 3, 5, 0.5F));
    SettleSides(model);
    return model.pieces;
}

bool IsSame(const std::vector<ModelFace>& a, const std::vector<ModelFace>& b)
{
    return std::ranges::equal(a, b, [](const ModelFace& one, const ModelFace& other) {
        return one.corners == other.corners && one.normal == other.normal;
    });
}

TEST(SurfaceSides, ClosedBoxStaysSingleAndAsItIs)
{
    const auto box = BoxFaces({0, 0, 0}, {1, 2, 3});
    const auto settled = Settled(box);
    ASSERT_THAT(settled, SizeIs(1));
    EXPECT_FALSE(settled[0].two_sided);
    EXPECT_TRUE(IsSame(settled[0].faces, box));
}

TEST(SurfaceSides, BoxWithoutAFaceOrWithATurnedOneIsTwoSided)
{
    auto open = BoxFaces({0, 0, 0}, {1, 2, 3});
    open.pop_back();
    auto twisted = BoxFaces({0, 0, 0}, {1, 2, 3});
    std::reverse(twisted[2].corners.begin(), twisted[2].corners.end());
    for (const auto& faces : {open, twisted}) {
        const auto settled = Settled(faces);
        ASSERT_THAT(settled, SizeIs(1));
        EXPECT_TRUE(settled[0].two_sided);
        EXPECT_TRUE(IsSame(settled[0].faces, faces));
    }
}

TEST(SurfaceSides, CornersThatDifferInTheirLastBitDoNotMeet)
{
    auto faces = BoxFaces({0, 0, 0}, {1, 1, 1});
    for (Point& corner : faces[0].corners)
        corner.x = corner.x == 1.0 ? 1.0 + 1e-15 : corner.x;
    EXPECT_TRUE(Settled(faces).at(0).two_sided);
}

TEST(SurfaceSides, ClosedAndOpenSurfacesOfAPieceAreSeparated)
{
    const auto box = BoxFaces({0, 0, 0}, {1, 1, 1});
    const std::vector<ModelFace> loose{MakeFace({{5, 0, 0}, {6, 0, 0}, {6, 1, 0}}).value()};
    Model model;
    Piece& piece = model.pieces.emplace_back(MakePiece("part", loose + box, 3, 5, 0.5F));
    piece.parents = {"machine"};
    piece.lines = {{{0, 0, 0}, {9, 9, 9}}};
    piece.edges =
        std::vector<Segment>{{{0, 0, 0}, {1, 0, 0}}, {{6, 0, 0}, {5, 0, 0}}, {{7, 7, 7}, {8, 8, 8}}};
    model.pieces.push_back(MakePiece("next", box));
    SettleSides(model);
    ASSERT_THAT(model.pieces, SizeIs(3));
    const Piece& closed = model.pieces[0];
    EXPECT_FALSE(closed.two_sided);
    EXPECT_TRUE(IsSame(closed.faces, box));
    EXPECT_THAT(closed.lines, SizeIs(1));
    EXPECT_THAT(closed.edges.value(), SizeIs(2));
    const Piece& open = model.pieces[1];
    EXPECT_TRUE(open.two_sided);
    EXPECT_TRUE(IsSame(open.faces, loose));
    EXPECT_THAT(open.lines, IsEmpty());
    ASSERT_THAT(open.edges.value(), SizeIs(1));
    EXPECT_EQ(open.edges->front().from, (Point{6, 0, 0}));
    EXPECT_EQ(open.name, "part");
    EXPECT_EQ(open.parents, closed.parents);
    EXPECT_EQ(open.category, 3);
    EXPECT_EQ(open.color, 5);
    EXPECT_EQ(open.alpha, 0.5F);
    EXPECT_EQ(model.pieces[2].name, "next");
}

TEST(SurfaceSides, FinAtAnEdgeOfABoxIsSeparatedFromIt)
{
    const auto box = BoxFaces({0, 0, 0}, {1, 1, 1});
    const std::vector<ModelFace> fin{MakeFace({{0, 0, 1}, {1, 0, 1}, {1, 0, 2}}).value()};
    const auto settled = Settled(box + fin);
    ASSERT_THAT(settled, SizeIs(2));
    EXPECT_TRUE(IsSame(settled[0].faces, box));
    EXPECT_FALSE(settled[0].two_sided);
    EXPECT_TRUE(IsSame(settled[1].faces, fin));
    EXPECT_TRUE(settled[1].two_sided);
}

TEST(SurfaceSides, BoxesThatShareAnEdgeAreClosed)
{
    const auto boxes = BoxFaces({0, 0, 0}, {1, 1, 1}) + BoxFaces({1, 1, 0}, {2, 2, 1});
    const auto settled = Settled(boxes);
    ASSERT_THAT(settled, SizeIs(1));
    EXPECT_FALSE(settled[0].two_sided);
}

TEST(SurfaceSides, SheetThatHoldsBothItsSidesStaysAsItIs)
{
    // Two triangles that meet, each with its back: every edge has as many uses in both directions.
    const std::vector<ModelFace> front{MakeFace({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}}).value(),
                                       MakeFace({{0, 0, 0}, {1, 1, 0}, {0, 1, 0}}).value()};
    const auto sheet = front + Turned(front);
    const auto settled = Settled(sheet);
    ASSERT_THAT(settled, SizeIs(1));
    EXPECT_FALSE(settled[0].two_sided);
    EXPECT_TRUE(IsSame(settled[0].faces, sheet));
}

TEST(SurfaceSides, BoxThatIsInsideOutIsTurned)
{
    const auto box = BoxFaces({10, 10, 10}, {11, 12, 13});
    const auto settled = Settled(Turned(box));
    ASSERT_THAT(settled, SizeIs(1));
    EXPECT_FALSE(settled[0].two_sided);
    EXPECT_TRUE(IsSame(settled[0].faces, box));
}

TEST(SurfaceSides, OneOfSeveralBoxesThatIsInsideOutIsTurnedAlone)
{
    const auto one = BoxFaces({0, 0, 0}, {1, 1, 1});
    const auto other = BoxFaces({0.25, 5, 0}, {0.5, 6, 1});
    EXPECT_TRUE(IsSame(Settled(one + Turned(other)).at(0).faces, one + other));
    EXPECT_TRUE(IsSame(Settled(Turned(one) + other).at(0).faces, one + other));
}

TEST(SurfaceSides, CavityStaysTurnedInwards)
{
    const auto outside = BoxFaces({0, 0, 0}, {9, 9, 9});
    const auto cavity = Turned(BoxFaces({1, 1, 1}, {8, 8, 8}));
    EXPECT_TRUE(IsSame(Settled(outside + cavity).at(0).faces, outside + cavity));
    EXPECT_TRUE(IsSame(Settled(cavity + outside).at(0).faces, cavity + outside));
    // A body within the cavity that is inside out is turned, and its own cavity is not.
    const auto core = BoxFaces({2, 2, 2}, {7, 7, 7});
    const auto hole = Turned(BoxFaces({3, 3, 3}, {4, 4, 4}));
    EXPECT_TRUE(
        IsSame(Settled(outside + cavity + Turned(core) + hole).at(0).faces, outside + cavity + core + hole));
}

TEST(SurfaceSides, BoxInTheNotchOfABodyIsNoCavity)
{
    // The notched body's box holds the small box, but the body does not.
    // The body is a prism over a U.
    std::vector<ModelFace> u;
    const std::vector<Point> low{{0, 0, 0}, {9, 0, 0}, {9, 9, 0}, {8, 9, 0},
                                 {8, 1, 0}, {1, 1, 0}, {1, 9, 0}, {0, 9, 0}};
    std::vector<Point> high = low;
    for (Point& corner : high)
        corner.z = 5.0;
    for (std::size_t i = 0; i < low.size(); ++i) {
        const std::size_t next = (i + 1) % low.size();
        u.push_back(MakeFace({low[i], low[next], high[next], high[i]}).value());
    }
    u.push_back(MakeFace(high).value());
    u.push_back(MakeFace({low.rbegin(), low.rend()}).value());
    const auto box = BoxFaces({4, 4, 2}, {5, 5, 3});
    EXPECT_TRUE(IsSame(Settled(u + Turned(box)).at(0).faces, u + box));
}

TEST(SurfaceSides, SurfacesNestedTooDeeplyAreTwoSided)
{
    std::vector<ModelFace> faces;
    constexpr int kShells = 5000;
    for (int i = 0; i < kShells; ++i) {
        const double size = kShells - i;
        faces = std::move(faces) + Turned(BoxFaces({-size, -size, -size}, {size, size, size}));
    }
    EXPECT_TRUE(Settled(faces).at(0).two_sided)
        << "all are visible where it cannot be told which are cavities";
}

TEST(SurfaceSides, BundledModelIsClosedAndStaysAsItIs)
{
    const Model before = MakeBundledModel();
    Model model = before;
    SettleSides(model);
    ASSERT_EQ(model.pieces.size(), before.pieces.size());
    for (std::size_t i = 0; i < model.pieces.size(); ++i) {
        EXPECT_FALSE(model.pieces[i].two_sided) << model.pieces[i].name;
        EXPECT_TRUE(IsSame(model.pieces[i].faces, before.pieces[i].faces)) << model.pieces[i].name;
    }
}

TEST(SurfaceSides, PieceThatIsTwoSidedStaysSo)
{
    Model model = BoxModel(BoxOf({0, 0, 0}, {1, 1, 1}));
    model.pieces[0].two_sided = true;
    SettleSides(model);
    EXPECT_TRUE(model.pieces.at(0).two_sided);
}

TEST(SurfaceSides, PiecesThatCloseTogetherAreSingleAndAsTheyAre)
{
    // A body with a cavity, in three colours: a side, the rest of the outer surface, and the cavity.
    const auto outer = BoxFaces({0, 0, 0}, {4, 4, 4});
    const std::vector<ModelFace> side(outer.begin(), outer.begin() + 1);
    const std::vector<ModelFace> rest(outer.begin() + 1, outer.end());
    const auto cavity = Turned(BoxFaces({1, 1, 1}, {2, 2, 2}));
    Model model;
    for (const auto& faces : {side, rest, cavity}) {
        model.pieces.push_back(MakePiece("part", faces));
        model.pieces.back().closes_with_others = true;
    }
    SettleSides(model);
    ASSERT_THAT(model.pieces, SizeIs(3));
    std::size_t i = 0;
    for (const auto& faces : {side, rest, cavity}) {
        EXPECT_FALSE(model.pieces[i].two_sided) << i;
        EXPECT_TRUE(IsSame(model.pieces[i].faces, faces)) << i;
        ++i;
    }
}

} // namespace
} // namespace viewer
