#include "viewer/scene/face_filling.h"

#include "tests/viewer/test_support.h"
#include "viewer/scene/feature_edges.h"
#include "viewer/scene/polygon_fill.h"
#include "viewer/scene/surface_sides.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <numbers>
#include <utility>

namespace viewer
{
namespace
{

using testing::AllOf;
using testing::ElementsAre;
using testing::Field;
using testing::IsEmpty;
using testing::SizeIs;

/// Matches the faces of this kind that are left out.
auto IsLeftOut(const char* kind, std::size_t count)
{
    return AllOf(Field("kind", &LeftOut::kind, kind), Field("count", &LeftOut::count, count));
}

Model FilledModel(const std::vector<ModelFace>& faces)
{
    Model model;
    model.pieces.push_back(MakePiece("", faces));
    FillFaces(model);
    return model;
}

std::vector<ModelFace> Filled(const std::vector<Point>& counterclockwise)
{
    return FilledModel({MakeFace(counterclockwise).value()}).pieces.at(0).faces;
}

/// The area that fans fill, in the direction of the normals. Parts that are turned over count negative.
double AreaOf(const std::vector<ModelFace>& faces)
{
    double area = 0.0;
    for (const ModelFace& face : faces)
        for (std::size_t i = 1; i + 1 < face.corners.size(); ++i)
            // Corners run clockwise.
            area -= 0.5 * Dot(face.normal, Cross(face.corners[i] - face.corners[0],
                                                 face.corners[i + 1] - face.corners[0]));
    return area;
}

/// The edges of the faces without a partner in the other direction, with the number of their uses.
std::map<std::vector<double>, int> BorderOf(const std::vector<ModelFace>& faces)
{
    std::map<std::vector<double>, int> border;
    for (const ModelFace& face : faces)
        for (std::size_t i = 0; i < face.corners.size(); ++i) {
            const Point& a = face.corners[i];
            const Point& b = face.corners[(i + 1) % face.corners.size()];
            if (const auto partner = border.find({b.x, b.y, b.z, a.x, a.y, a.z}); partner != border.end()) {
                if (--partner->second == 0)
                    border.erase(partner);
            } else {
                ++border[{a.x, a.y, a.z, b.x, b.y, b.z}];
            }
        }
    return border;
}

/// A regular polygon of radius 1, whose corners follow each other in steps of `step` places.
std::vector<Point> Star(int corners, int step)
{
    std::vector<Point> outline;
    for (int i = 0; i < corners; ++i) {
        const double angle =
            2.0 * std::numbers::pi * static_cast<double>(static_cast<long>(i) * step % corners) / corners;
        outline.push_back({std::cos(angle), std::sin(angle), 0.0});
    }
    return outline;
}

/// A comb of `teeth` teeth of width 1 and height 1000, one unit apart, on a bar.
std::vector<Point> Comb(int teeth)
{
    std::vector<Point> outline{{0, 0, 0}, {2.0 * teeth, 0, 0}};
    for (int i = teeth - 1; i >= 0; --i) {
        const double x = 2.0 * i;
        for (const Point& corner :
             {Point{x + 2, 1, 0}, Point{x + 2, 1000, 0}, Point{x + 1, 1000, 0}, Point{x + 1, 1, 0}})
            outline.push_back(corner);
    }
    outline.push_back({0, 1, 0});
    return outline;
}

TEST(FaceFilling, ConvexFaceStaysAsItIs)
{
    for (const int corners : {3, 4, 5, 64}) {
        const ModelFace face = MakeFace(Star(corners, 1)).value();
        const std::vector<ModelFace> filled = Filled(Star(corners, 1));
        ASSERT_THAT(filled, SizeIs(1)) << corners;
        EXPECT_EQ(filled[0].corners, face.corners);
        EXPECT_EQ(filled[0].normal, face.normal);
        EXPECT_FALSE(filled[0].continues);
    }
}

TEST(FaceFilling, ConcaveFaceBecomesTrianglesWithItsCornersAndItsNormal)
{
    // In each of six planes, so that each coordinate is dropped in either direction.
    for (int turn = 0; turn < 3; ++turn)
        for (const bool mirrored : {false, true}) {
            std::vector<Point> outline{{0, 0, 0}, {2, 0, 0}, {2, 1, 0}, {1, 1, 0}, {1, 2, 0}, {0, 2, 0}};
            if (mirrored)
                std::reverse(outline.begin(), outline.end());
            for (Point& corner : outline)
                for (int i = 0; i < turn; ++i)
                    corner = {corner.z, corner.x, corner.y};
            const ModelFace whole = MakeFace(outline).value();
            const std::vector<ModelFace> filled = Filled(outline);
            ASSERT_THAT(filled, SizeIs(4));
            EXPECT_DOUBLE_EQ(AreaOf(filled), 3.0);
            EXPECT_EQ(BorderOf(filled), BorderOf({whole})) << "the outline, in its direction";
            for (std::size_t i = 0; i < filled.size(); ++i) {
                EXPECT_THAT(filled[i].corners, SizeIs(3));
                EXPECT_EQ(filled[i].normal, whole.normal);
                EXPECT_EQ(filled[i].continues, i > 0);
            }
        }
}

TEST(FaceFilling, ConvexFaceOfManyCornersIsCutIntoFewParts)
{
    for (const int corners : {65, 66, 126, 127, 1000}) {
        const std::vector<ModelFace> filled = Filled(Star(corners, 1));
        // Each part takes 62 triangles.
        EXPECT_THAT(filled, SizeIs((static_cast<std::size_t>(corners) - 2 + 61) / 62)) << corners;
        EXPECT_NEAR(AreaOf(filled), 0.5 * corners * std::sin(2.0 * std::numbers::pi / corners), 1e-12);
        EXPECT_EQ(BorderOf(filled), BorderOf({MakeFace(Star(corners, 1)).value()}));
        EXPECT_TRUE(std::ranges::all_of(
            filled, [](const ModelFace& face) { return face.corners.size() <= kMaxPartCorners; }));
    }
}

TEST(FaceFilling, PartsCountAsTheFaceThatTheyFill)
{
    EXPECT_EQ(FilledModel({MakeFace(Star(200, 1)).value(), MakeFace(Comb(5)).value()}).FaceCount(), 2U);
}

TEST(FaceFilling, FaceFarFromTheOriginKeepsEveryBitOfItsCorners)
{
    std::vector<Point> outline = Comb(7);
    for (Point& corner : outline)
        corner = corner * 0.1 + Point{1e6 + 0.3, -1e6, 1e6};
    EXPECT_EQ(BorderOf(Filled(outline)), BorderOf({MakeFace(outline).value()}));
}

TEST(FaceFilling, OutlineThatRunsToAHoleAndBackLeavesTheHoleEmpty)
{
    const std::vector<Point> outline{{0, 0, 0}, {4, 0, 0}, {4, 4, 0}, {0, 4, 0}, {0, 0, 0},
                                     {1, 1, 0}, {1, 3, 0}, {3, 3, 0}, {3, 1, 0}, {1, 1, 0}};
    const std::vector<ModelFace> filled = Filled(outline);
    EXPECT_DOUBLE_EQ(AreaOf(filled), 12.0);
    EXPECT_EQ(BorderOf(filled), BorderOf({MakeFace(outline).value()}));
}

TEST(FaceFilling, FaceThatCrossesItselfIsFilledWhereARayCrossesItAnOddNumberOfTimes)
{
    // Two triangles that touch at (1, 1) and run in opposite directions, with areas of 1 and 4.
    const std::vector<ModelFace> bow_tie = Filled({{0, 0, 0}, {3, 3, 0}, {3, -1, 0}, {0, 2, 0}});
    EXPECT_DOUBLE_EQ(AreaOf(bow_tie), 1.0 + 4.0);
    // A pentagram without its middle: five triangles at the sides of a pentagon.
    const double side = 2.0 * std::sin(std::numbers::pi / 5) / (std::numbers::phi * std::numbers::phi);
    const double height = 0.5 * side * std::tan(72.0 * std::numbers::pi / 180.0);
    EXPECT_NEAR(AreaOf(Filled(Star(5, 2))), 5 * 0.5 * side * height, 1e-6);
}

TEST(FaceFilling, FaceWithTooManyCrossingsIsLeftOutByName)
{
    // Each of 2001 edges crosses 1998 others.
    const Model model = FilledModel({MakeFace(Star(2001, 1000)).value(), MakeFace(Star(3, 1)).value()});
    EXPECT_THAT(model.pieces.at(0).faces, SizeIs(1));
    EXPECT_THAT(model.left_out, ElementsAre(IsLeftOut("face that crosses itself", 1)));
}

TEST(FaceFilling, FaceOfManyCornersThatDoesNotCrossItselfIsFilled)
{
    const std::vector<Point> outline = Comb(1000);
    const std::vector<ModelFace> filled = Filled(outline);
    EXPECT_NEAR(AreaOf(filled), 1000.0 * 999 + 2000.0, 1e-3);
    EXPECT_EQ(BorderOf(filled), BorderOf({MakeFace(outline).value()}));
}

TEST(FaceFilling, ConcaveFaceOfTooManyCornersIsLeftOutByNameAndAConvexOneIsNot)
{
    const Model model = FilledModel({MakeFace(Comb(5001)).value(), MakeFace(Star(20'005, 1)).value()});
    EXPECT_EQ(model.FaceCount(), 1U);
    EXPECT_THAT(model.left_out, ElementsAre(IsLeftOut("concave face of too many corners", 1)));
}

TEST(FaceFilling, FaceThatCannotBeFilledInSeveralSecondsIsLeftOutByName)
{
    const Model model = FilledModel({MakeFace(Comb(2000)).value(), MakeFace(Comb(20)).value()});
    EXPECT_EQ(model.FaceCount(), 1U);
    EXPECT_THAT(model.left_out, ElementsAre(IsLeftOut("concave face of too many corners", 1)));
}

TEST(FaceFilling, FacesBeyondTheBudgetOfAModelAreLeftOutByName)
{
    // Stars of 2000 points, each of which takes more than half of the limit of a face.
    std::vector<Point> outline = Star(4000, 1);
    for (std::size_t i = 0; i < outline.size(); i += 2)
        outline[i] = outline[i] * 0.5;
    FlatLoop loop;
    for (const Point& corner : outline)
        loop.push_back({corner.x, corner.y});
    std::size_t work = kMaxFillWork;
    ASSERT_EQ(FillLoops({loop}, work).result, FillResult::Filled);
    ASSERT_LT(work, kMaxFillWork / 2);
    // The budget is that of ten faces that take the limit.
    const std::size_t count = 10 * kMaxFillWork / (kMaxFillWork - work);
    Model model;
    for (std::size_t i = 0; i < count + 2; ++i)
        model.pieces.push_back(MakePiece("", {MakeFace(outline).value()}));
    FillFaces(model);
    EXPECT_EQ(model.FaceCount(), count);
    EXPECT_THAT(model.left_out, ElementsAre(IsLeftOut("concave face of too many corners", 2)));
}

TEST(FaceFilling, OutlineThatGoesAroundSeveralTimesIsFilledByTheOddEvenRule)
{
    const auto rounds = [](int sides, int count) {
        std::vector<Point> outline;
        for (int i = 0; i < count; ++i)
            for (const Point& corner : Star(sides, 1))
                outline.push_back(corner);
        return FilledModel({MakeFace(outline).value()});
    };
    // A square with diagonals of length 2.
    EXPECT_DOUBLE_EQ(AreaOf(rounds(4, 3).pieces.at(0).faces), 2.0);
    EXPECT_THAT(rounds(3, 2).pieces.at(0).faces, IsEmpty());
    EXPECT_THAT(rounds(3, 2).left_out, IsEmpty());
    // Each edge lies on 999 or 1000 others.
    for (const Model& model : {rounds(4, 1001), rounds(3, 1000)}) {
        EXPECT_EQ(model.FaceCount(), 0U);
        EXPECT_THAT(model.left_out, ElementsAre(IsLeftOut("face that crosses itself", 1)));
    }
}

/// An L of height 1 over the outline of the concave file.
Piece ConcavePrism()
{
    const std::vector<Point> low{{0, 0, 0}, {2, 0, 0}, {2, 1, 0}, {1, 1, 0}, {1, 2, 0}, {0, 2, 0}};
    std::vector<Point> high = low;
    for (Point& corner : high)
        corner.z = 1.0;
    Piece piece;
    for (std::size_t i = 0; i < low.size(); ++i) {
        const std::size_t next = (i + 1) % low.size();
        piece.faces.push_back(MakeFace({low[i], low[next], high[next], high[i]}).value());
    }
    piece.faces.push_back(MakeFace(high).value());
    piece.faces.push_back(MakeFace({low.rbegin(), low.rend()}).value());
    return piece;
}

std::size_t PhysicalEdgesOf(const Piece& piece)
{
    auto body = MakeSolid(piece, [](const Point& point) { return point; });
    if (!body)
        return 0;
    std::vector<AModeler::Edge*> edges;
    std::vector<AModeler::Vertex*> vertices;
    body->getPhysicalEdgesAndVertices(true, false, edges, vertices);
    return edges.size();
}

TEST(FaceFilling, SolidShowsNoDiagonalOfItsFacesInLineMode)
{
    Model model;
    model.pieces.push_back(ConcavePrism());
    FillFaces(model);
    EXPECT_GT(model.pieces[0].faces.size(), 8U);
    EXPECT_EQ(PhysicalEdgesOf(model.pieces[0]), 18U);
    model.pieces[0].edges = std::vector<Segment>{{{0, 0, 0}, {2, 0, 0}}, {{0, 0, 0}, {0, 0, 1}}};
    EXPECT_EQ(PhysicalEdgesOf(model.pieces[0]), 2U) << "those of the file alone";
}

TEST(FaceFilling, FaceThatIsNotFlatShowsNoDiagonalEither)
{
    // A concave face with a corner lifted out of its plane: its triangles meet at more than 20 degrees.
    const ModelFace bent =
        MakeFace({{0, 0, 0}, {2, 0, 0}, {2, 1, 0}, {1, 1, 1}, {1, 2, 0}, {0, 2, 0}}).value();
    Model open;
    open.pieces.push_back(MakePiece("", {bent}));
    FillFaces(open);
    ASSERT_THAT(open.pieces[0].faces, SizeIs(4));
    EXPECT_THAT(FeatureEdges(open.pieces[0]), SizeIs(6));

    Model solid;
    solid.pieces.push_back(ConcavePrism());
    for (ModelFace& face : solid.pieces[0].faces)
        for (Point& corner : face.corners)
            if (corner == Point{1, 1, 1})
                corner.z = 2.0;
    FillFaces(solid);
    EXPECT_EQ(PhysicalEdgesOf(solid.pieces[0]), 18U);
    for (ModelFace& face : solid.pieces[0].faces)
        face.continues = false;
    EXPECT_GT(PhysicalEdgesOf(solid.pieces[0]), 18U) << "otherwise they would be seen";
}

TEST(FaceFilling, PartsOfAFaceStayPartsWhereTheyAreCutAgain)
{
    std::vector<ModelFace> faces{MakeFace(Star(3, 1)).value(), MakeFace(Comb(2)).value()};
    faces[1].continues = true;
    EXPECT_EQ(FilledModel(faces).FaceCount(), 1U);
    // The first part is left out, so that the second one is the first.
    faces[0] = MakeFace(Star(2001, 1000)).value();
    const Model model = FilledModel(faces);
    EXPECT_EQ(model.FaceCount(), 1U);
    EXPECT_FALSE(model.pieces[0].faces.front().continues);
}

} // namespace
} // namespace viewer
