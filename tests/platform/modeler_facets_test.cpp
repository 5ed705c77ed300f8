// Faces that a fan would not fill: they are split into convex facets.
#include "tests/platform/modeler_checks.h"

#include <gmock/gmock.h>

#include <cmath>
#include <functional>
#include <numbers>

using namespace karv_test;

namespace
{

constexpr const char* kCannotSplit =
    "face 0 has loops that cross, touch, run in wrong directions or enclose no area";

/// A rectangle, clockwise seen from +Z.
Points Rectangle(double left, double bottom, double right, double top)
{
    return {{left, bottom, 0}, {left, top, 0}, {right, top, 0}, {right, bottom, 0}};
}

/// A rectangle, counter-clockwise, as holes run.
Points Hole(double left, double bottom, double right, double top)
{
    const Points loop = Rectangle(left, bottom, right, top);
    return {loop.rbegin(), loop.rend()};
}

// An L of area 3 with its notch at (1, 1), clockwise seen from +Z.
const Points kL{{0, 0, 0}, {0, 2, 0}, {1, 2, 0}, {1, 1, 0}, {2, 1, 0}, {2, 0, 0}};

std::vector<Points> Mapped(const std::vector<Points>& loops,
                           const std::function<AcGePoint3d(AcGePoint3d)>& map)
{
    std::vector<Points> mapped;
    for (const Points& loop : loops) {
        Points& corners = mapped.emplace_back();
        for (const AcGePoint3d& corner : loop)
            corners.push_back(map(corner));
    }
    return mapped;
}

std::size_t CornersIn(const std::vector<Points>& loops)
{
    std::size_t count = 0;
    for (const Points& loop : loops)
        count += loop.size();
    return count;
}

/// Splits a lamina of these loops and checks both sides: the facets are convex, have one plane and this
/// area in all, and only the loops' edges are physical. Returns the number of facets of one side.
int ExpectConvexFacets(const std::vector<Points>& loops, double area)
{
    AModeler::Body body = LaminaOf(loops).Build();
    ExpectSound(body);
    const std::vector<AModeler::Face*> faces = FacesOf(body);
    const AcGeVector3d front = NormalOf(*faces.front());
    double front_area = 0.0;
    double back_area = 0.0;
    int front_faces = 0;
    for (AModeler::Face* face : faces) {
        EXPECT_TRUE(IsConvexFace(*face));
        const AcGeVector3d normal = NormalOf(*face);
        const bool is_front = normal.dotProduct(front) > 0.0;
        (is_front ? front_area : back_area) += FanArea(*face);
        front_faces += is_front ? 1 : 0;
        EXPECT_EQ((is_front ? normal : -normal).x, front.x);
        EXPECT_EQ((is_front ? normal : -normal).y, front.y);
        EXPECT_EQ((is_front ? normal : -normal).z, front.z);
    }
    EXPECT_NEAR(front_area / area, 1.0, 1e-9);
    EXPECT_NEAR(back_area / area, 1.0, 1e-9);
    EXPECT_EQ(PhysicalEdgesOf(body).size(), CornersIn(loops));
    return front_faces;
}

/// A plate of `count` x `count` square holes of side 1, 1 apart: its side is 2 count + 1.
std::vector<Points> Sieve(int count)
{
    const double side = 2.0 * count + 1.0;
    std::vector<Points> loops{Rectangle(0, 0, side, side)};
    for (int i = 0; i < count; ++i)
        for (int k = 0; k < count; ++k)
            loops.push_back(Hole(2.0 * i + 1.0, 2.0 * k + 1.0, 2.0 * i + 2.0, 2.0 * k + 2.0));
    return loops;
}

Points RegularPolygon(int corners, double radius)
{
    Points loop;
    for (int i = 0; i < corners; ++i) {
        const double angle = -2.0 * std::numbers::pi * i / corners;
        loop.emplace_back(radius * std::cos(angle), radius * std::sin(angle), 0.0);
    }
    return loop;
}

double RegularArea(int corners, double radius)
{
    return 0.5 * corners * radius * radius * std::sin(2.0 * std::numbers::pi / corners);
}

/// A tube of square section, of side 4 outside and 2 inside and of height 1, with the given loops for its
/// upper end: outside 0 to 3 clockwise seen from above, inside 4 to 7 counter-clockwise.
AModeler::BodyBuilder Tube(const std::vector<Loop>& top)
{
    AModeler::BodyBuilder builder;
    for (const double z : {1.0, 0.0})
        for (const Points& loop : {Rectangle(0, 0, 4, 4), Hole(1, 1, 3, 3)})
            for (const AcGePoint3d& corner : loop)
                builder.AddPoint({corner.x, corner.y, z});
    AddFaceWithHoles(builder, top);
    AddFaceWithHoles(builder, {{11, 10, 9, 8}, {15, 14, 13, 12}});
    for (const int first : {0, 4})
        for (int i = 0; i < 4; ++i) {
            const int from = first + i;
            const int to = first + (i + 1) % 4;
            builder.AddFace(Loop{to, from, from + 8, to + 8});
        }
    return builder;
}

} // namespace

TEST(ModelerFacets, ConvexFacesStayWhole)
{
    EXPECT_EQ(ExpectConvexFacets({{{0, 0, 0}, {0, 1, 0}, {1, 0, 0}}}, 0.5), 1);
    EXPECT_EQ(ExpectConvexFacets({Rectangle(0, 0, 3, 2)}, 6.0), 1);
    EXPECT_EQ(ExpectConvexFacets({RegularPolygon(100, 1.0)}, RegularArea(100, 1.0)), 1);
}

TEST(ModelerFacets, CornersOnAStraightEdgeDoNotSplit)
{
    EXPECT_EQ(ExpectConvexFacets({{{0, 0, 0}, {0, 1, 0}, {0, 2, 0}, {1, 2, 0}, {2, 2, 0}, {2, 0, 0}}}, 4.0),
              1);
}

TEST(ModelerFacets, CornersThatRoundingPutsBesideTheEdgeDoNotSplit)
{
    // 1e-9 inside an edge of length 2: a turn to the wrong side by 2e-9.
    EXPECT_EQ(ExpectConvexFacets({{{0, 0, 0}, {1e-9, 1, 0}, {0, 2, 0}, {2, 2, 0}, {2, 0, 0}}}, 4.0), 1);
}

TEST(ModelerFacets, NotchThatCanBeSeenSplits)
{
    // 0.01 deep: the area is 4 - 0.01 x 2 / 2.
    EXPECT_EQ(ExpectConvexFacets({{{0, 0, 0}, {0.01, 1, 0}, {0, 2, 0}, {2, 2, 0}, {2, 0, 0}}}, 3.99), 2);
}

TEST(ModelerFacets, LIsTwoOrThree)
{
    const int facets = ExpectConvexFacets({kL}, 3.0);
    EXPECT_GE(facets, 2);
    EXPECT_LE(facets, 3); // an inner corner leaves at most two cuts that cannot be removed
}

TEST(ModelerFacets, EveryStartOfTheLoopIsTheSame)
{
    Points loop = kL;
    for (std::size_t i = 0; i < loop.size(); ++i) {
        std::ranges::rotate(loop, loop.begin() + 1);
        EXPECT_LE(ExpectConvexFacets({loop}, 3.0), 3);
    }
}

TEST(ModelerFacets, EveryDirectionInSpaceIsTheSame)
{
    const std::vector<std::function<AcGePoint3d(AcGePoint3d)>> maps{
        [](AcGePoint3d p) {
            return AcGePoint3d{p.y, p.x, 0.0};
        }, // seen from -Z
        [](AcGePoint3d p) {
            return AcGePoint3d{5.0, p.x, p.y};
        }, // X
        [](AcGePoint3d p) {
            return AcGePoint3d{5.0, p.y, p.x};
        }, // -X
        [](AcGePoint3d p) {
            return AcGePoint3d{p.y, 5.0, p.x};
        }, // Y
        [](AcGePoint3d p) {
            return AcGePoint3d{p.x, 5.0, p.y};
        }, // -Y
        [](AcGePoint3d p) {
            return AcGePoint3d{p.x, p.y, p.x + p.y};
        } // slanted: sqrt 3 times the area
    };
    for (const auto& map : maps) {
        const double area = &map == &maps.back() ? 3.0 * std::sqrt(3.0) : 3.0;
        EXPECT_LE(ExpectConvexFacets(Mapped({kL}, map), area), 3);
    }
}

TEST(ModelerFacets, TinyAndHugeFacesAreSplit)
{
    for (const double factor : {1e-140, 1e-9, 1e9, 1e140}) {
        const auto scale = [&](AcGePoint3d p) {
            return AcGePoint3d{p.x * factor, p.y * factor, p.z * factor};
        };
        EXPECT_LE(ExpectConvexFacets(Mapped({kL}, scale), 3.0 * factor * factor), 3);
    }
}

TEST(ModelerFacets, FaceFarFromTheOriginIsSplit)
{
    const auto move = [](AcGePoint3d p) { return AcGePoint3d{p.x + 1e9, p.y - 1e9, p.z + 1e9}; };
    EXPECT_LE(ExpectConvexFacets(Mapped({kL}, move), 3.0), 3);
}

TEST(ModelerFacets, WarpedFaceHasOnePlaneForAllFacets)
{
    Points loop = kL;
    loop[2].z = 0.05;
    AModeler::Body body = LaminaOf({loop}).Build();
    const std::vector<AModeler::Face*> faces = FacesOf(body);
    ASSERT_GE(faces.size(), 4U);
    for (const AModeler::Face* face : {faces[0], faces[1]}) {
        EXPECT_TRUE(face->isPlaneEvaluated());
        EXPECT_EQ(face->plane().normal.x, faces[0]->plane().normal.x);
        EXPECT_EQ(face->plane().normal.y, faces[0]->plane().normal.y);
        EXPECT_EQ(face->plane().offset, faces[0]->plane().offset);
    }
    // The warp tilts the mean plane.
    EXPECT_NE(faces[0]->plane().normal.x, 0.0);
}

TEST(ModelerFacets, CombOfManyTeeth)
{
    // Teeth of width 1 and height 5 on a bar of height 1, 1 apart.
    constexpr int kTeeth = 100;
    Points comb{{0, 0, 0}};
    for (int i = 0; i < kTeeth; ++i) {
        const double left = 2.0 * i;
        comb.emplace_back(left, i == 0 ? 6.0 : 1.0, 0.0);
        if (i > 0)
            comb.emplace_back(left, 6.0, 0.0);
        comb.emplace_back(left + 1.0, 6.0, 0.0);
        if (i + 1 < kTeeth)
            comb.emplace_back(left + 1.0, 1.0, 0.0);
    }
    comb.emplace_back(2.0 * kTeeth - 1.0, 0.0, 0.0);
    // The bar is 199 x 1, the teeth are 100 x 5. 198 inner corners leave at most two cuts each.
    EXPECT_LE(ExpectConvexFacets({comb}, 699.0), 397);
}

TEST(ModelerFacets, SpiralIsSplit)
{
    // A strip of width 1 along the corners of a square spiral: outwards on one side and back on the other.
    const Points spiral{{0, 0, 0}, {0, 7, 0}, {7, 7, 0}, {7, 1, 0}, {2, 1, 0}, {2, 5, 0},
                        {5, 5, 0}, {5, 3, 0}, {4, 3, 0}, {4, 4, 0}, {3, 4, 0}, {3, 2, 0},
                        {6, 2, 0}, {6, 6, 0}, {1, 6, 0}, {1, 0, 0}};
    // Pieces of the strip of lengths 7 (left), 6 (top), 5 (right), 4 (bottom), 3, 2 and 1.
    ExpectConvexFacets({spiral}, 28.0);
}

TEST(ModelerFacets, StarIsSplit)
{
    Points star;
    for (int i = 0; i < 10; ++i) {
        const double angle = -std::numbers::pi * i / 5.0;
        const double radius = i % 2 == 0 ? 2.0 : 0.5;
        star.emplace_back(radius * std::cos(angle), radius * std::sin(angle), 0.0);
    }
    // Ten triangles with sides 2 and 0.5 and 36 degrees between them.
    EXPECT_LE(ExpectConvexFacets({star}, 10.0 * 0.5 * 2.0 * 0.5 * std::sin(std::numbers::pi / 5.0)), 11);
}

TEST(ModelerFacets, CornersInOneLineOfAConcaveFaceKeepTheirEdges)
{
    Points loop{{0, 0, 0}};
    for (int i = 1; i < 20; ++i) // along the left side
        loop.emplace_back(0.0, 0.1 * i, 0.0);
    loop.insert(loop.end(), {{0, 2, 0}, {1, 2, 0}, {1, 1, 0}, {2, 1, 0}, {2, 0, 0}});
    ExpectConvexFacets({loop}, 3.0);
}

TEST(ModelerFacets, HoleSplitsARing)
{
    // 16 - 4. Four inner corners leave at most eight cuts around the hole, which are as many facets.
    EXPECT_LE(ExpectConvexFacets({Rectangle(0, 0, 4, 4), Hole(1, 1, 3, 3)}, 12.0), 8);
}

TEST(ModelerFacets, HoleThatIsTurnedAgainstTheOutline)
{
    const Points diamond{{2, 1, 0}, {3, 2, 0}, {2, 3, 0}, {1, 2, 0}}; // counter-clockwise
    ExpectConvexFacets({Rectangle(0, 0, 4, 4), diamond}, 14.0);
}

TEST(ModelerFacets, TwoHoles)
{
    ExpectConvexFacets({Rectangle(0, 0, 7, 3), Hole(1, 1, 2, 2), Hole(4, 1, 6, 2)}, 18.0);
}

TEST(ModelerFacets, HundredHoles)
{
    ExpectConvexFacets(Sieve(10), 21.0 * 21.0 - 100.0);
}

TEST(ModelerFacets, HoleInAConcaveFace)
{
    ExpectConvexFacets({kL, Hole(0.25, 0.25, 0.75, 0.75)}, 2.75);
}

TEST(ModelerFacets, RoundHoleOfManyCorners)
{
    Points hole = RegularPolygon(1000, 1.0);
    std::ranges::reverse(hole);
    const auto center = [](AcGePoint3d p) { return AcGePoint3d{p.x + 2.0, p.y + 2.0, 0.0}; };
    ExpectConvexFacets({Rectangle(0, 0, 4, 4), Mapped({hole}, center).front()},
                       16.0 - RegularArea(1000, 1.0));
}

TEST(ModelerFacets, OutlineThatRunsAlongAnEdgeInBothDirections)
{
    AModeler::Body body = Tube({{0, 1, 2, 3, 0, 4, 5, 6, 7, 4}}).Build();
    ExpectSound(body);
    for (AModeler::Face* face : FacesOf(body))
        EXPECT_TRUE(IsConvexFace(*face));
    EXPECT_NEAR(VolumeOf(body), 12.0, 1e-12);
    EXPECT_EQ(PhysicalEdgesOf(body).size(), 24U);
}

TEST(ModelerFacets, CutsAlongEdgesOfOtherFacesArePairedWithinTheFace)
{
    // A prism over an L, whose upper end must be cut from its inner corner, point 9, to one of the points 6,
    // 7 and 11. Along each of these stands another solid, a tetrahedron with two points of its own.
    Points points;
    for (const double z : {0.0, 1.0})
        for (const AcGePoint3d& corner : kL)
            points.emplace_back(corner.x, corner.y, z);
    std::vector<Loop> faces{{6, 7, 8, 9, 10, 11}, {5, 4, 3, 2, 1, 0}};
    for (int i = 0; i < 6; ++i) {
        const int next = (i + 1) % 6;
        faces.push_back({next, next + 6, i + 6, i});
    }
    for (const int end : {6, 7, 11}) {
        const int own = static_cast<int>(points.size());
        points.insert(points.end(), {{0.75, 0.25, 0.5}, {0.25, 0.75, 0.5}});
        faces.insert(faces.end(), {{end, own, own + 1}, {end, 9, own}, {end, own + 1, 9}, {9, own + 1, own}});
    }
    AModeler::Body body = BuilderOf(points, faces).Build();
    ExpectSound(body);
    EXPECT_EQ(PhysicalEdgesOf(body).size(), 18U + 3U * 6U);
    for (const AModeler::Face* face : FacesOf(body)) {
        for (const AModeler::Edge* edge : EdgesOf(*face)) {
            const bool is_cut = !edge->isPhysical(); // between facets of one plane
            EXPECT_TRUE(!is_cut || edge->partner()->face()->plane().normal.z == face->plane().normal.z);
        }
    }
}

TEST(ModelerFacetsRefusal, OutlineThatCrossesItself)
{
    // A bow tie with unequal halves, so that it has an area.
    EXPECT_EQ(RefusalOf(LaminaOf({{{0, 0, 0}, {3, 3, 0}, {3, 0, 0}, {0, 2, 0}}})), kCannotSplit);
}

TEST(ModelerFacetsRefusal, OutlineThatGoesAroundTwice)
{
    // A five-pointed star along its chords turns right everywhere.
    const Points circle = RegularPolygon(5, 1.0);
    EXPECT_EQ(RefusalOf(LaminaOf({{circle[0], circle[2], circle[4], circle[1], circle[3]}})), kCannotSplit);
}

TEST(ModelerFacetsRefusal, HoleThatCrossesTheOutline)
{
    EXPECT_EQ(RefusalOf(LaminaOf({Rectangle(0, 0, 4, 4), Hole(3, 1, 5, 3)})), kCannotSplit);
}

TEST(ModelerFacetsRefusal, HoleOutsideTheOutline)
{
    EXPECT_EQ(RefusalOf(LaminaOf({Rectangle(0, 0, 4, 4), Hole(5, 1, 6, 2)})), kCannotSplit);
}

TEST(ModelerFacetsRefusal, HoleThatRunsLikeTheOutline)
{
    EXPECT_EQ(RefusalOf(LaminaOf({Rectangle(0, 0, 4, 4), Rectangle(1, 1, 3, 3)})), kCannotSplit);
}

TEST(ModelerFacetsRefusal, HolesThatCrossEachOther)
{
    EXPECT_EQ(RefusalOf(LaminaOf({Rectangle(0, 0, 9, 9), Hole(1, 1, 4, 4), Hole(3, 3, 6, 6)})), kCannotSplit);
}

TEST(ModelerFacetsRefusal, HoleWithinAHole)
{
    EXPECT_EQ(RefusalOf(LaminaOf({Rectangle(0, 0, 9, 9), Hole(1, 1, 8, 8), Hole(3, 3, 6, 6)})), kCannotSplit);
}

TEST(ModelerFacetsRefusal, HoleAsLargeAsTheOutline)
{
    EXPECT_EQ(RefusalOf(LaminaOf({Rectangle(0, 0, 4, 4), Hole(0, 0, 4, 4)})), kCannotSplit);
}

TEST(ModelerFacetsRefusal, HoleThatTouchesTheOutlineAtAPointOfAnotherNumber)
{
    EXPECT_EQ(RefusalOf(LaminaOf({Rectangle(0, 0, 4, 4), {{0, 0, 0}, {2, 1, 0}, {1, 2, 0}}})), kCannotSplit);
}

TEST(ModelerFacetsRefusal, OutlineWithoutAreaThatHasAHole)
{
    EXPECT_EQ(RefusalOf(LaminaOf({{{0, 0, 0}, {1, 0, 0}, {2, 0, 0}}, Hole(0, 0, 1, 1)})), kCannotSplit);
}

TEST(ModelerFacetsRefusal, NamesTheFace)
{
    // Faces 0 and 1 are sound. Of the bow tie's two faces the first is refused.
    AModeler::BodyBuilder builder = LaminaOf({Rectangle(0, 0, 4, 4)});
    for (const AcGePoint3d& point : Points{{0, 0, 0}, {3, 3, 0}, {3, 0, 0}, {0, 2, 0}})
        builder.AddPoint(point);
    builder.AddFace(Loop{4, 5, 6, 7});
    builder.AddFace(Loop{7, 6, 5, 4});
    EXPECT_THAT(RefusalOf(builder), testing::StartsWith("face 2 has loops that cross"));
}

TEST(ModelerFacets, HoleBesideAnEdgeThereAndBackOfTheCallers)
{
    // A plate with two holes. The outline of its upper end runs to the left hole and back.
    AModeler::BodyBuilder builder;
    for (const double z : {1.0, 0.0}) {
        for (const Points& loop : {Rectangle(0, 0, 9, 4), Hole(1, 1, 3, 3), Hole(6, 1, 8, 3)})
            for (const AcGePoint3d& corner : loop)
                builder.AddPoint({corner.x, corner.y, z});
    }
    AddFaceWithHoles(builder, {{0, 1, 2, 3, 0, 4, 5, 6, 7, 4}, {8, 9, 10, 11}});
    AddFaceWithHoles(builder, {{15, 14, 13, 12}, {19, 18, 17, 16}, {23, 22, 21, 20}});
    for (const int first : {0, 4, 8})
        for (int i = 0; i < 4; ++i) {
            const int from = first + i;
            const int to = first + (i + 1) % 4;
            builder.AddFace(Loop{to, from, from + 12, to + 12});
        }
    AModeler::Body body = builder.Build();
    ExpectSound(body);
    for (AModeler::Face* face : FacesOf(body))
        EXPECT_TRUE(IsConvexFace(*face));
    EXPECT_NEAR(VolumeOf(body), 28.0, 1e-12); // 36 - 4 - 4
    EXPECT_EQ(PhysicalEdgesOf(body).size(), 36U);
}
