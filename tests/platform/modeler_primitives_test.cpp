// Boxes, prisms and solids of revolution: counts, volumes, normals and edges, and refusals.
#include "platform/modeler/primitives.h"

#include "tests/platform/modeler_checks.h"
#include "tests/support/non_finite.h"

#include <numbers>

using namespace karv_test;
using AModeler::MakeBox;
using AModeler::MakePrism;
using AModeler::MakeRevolution;
using AModeler::ProfilePoint;

namespace
{

const Points kOutline{{0, 0, 0}, {2, 0, 0}, {2, 2, 0}, {0, 2, 0}};
const Points kHole{{0.5, 0.5, 0}, {1.5, 0.5, 0}, {1.5, 1.5, 0}, {0.5, 1.5, 0}};
const Points kAngle{{0, 0, 0}, {2, 0, 0}, {2, 1, 0}, {1, 1, 0}, {1, 2, 0}, {0, 2, 0}};
const std::vector<ProfilePoint> kCylinder{{0, 0}, {2, 0}, {2, 3}, {0, 3}};

Points Reversed(const Points& loop)
{
    return {loop.rbegin(), loop.rend()};
}

void ExpectConvexFaces(AModeler::Body& body)
{
    for (AModeler::Face* face : FacesOf(body))
        EXPECT_TRUE(IsConvexFace(*face));
}

template <typename Make>
bool Refuses(const Make& make)
{
    try {
        static_cast<void>(make());
    } catch (const AModeler::BodyError& error) {
        return *error.what() != '\0';
    }
    return false;
}

/// The area of a regular polygon, the cross-section of a solid of revolution.
double SectionArea(int corners, double radius)
{
    return 0.5 * corners * radius * radius * std::sin(2.0 * std::numbers::pi / corners);
}

} // namespace

TEST(Box, HasSixFacesOfFourCornersAndTwelveEdges)
{
    AModeler::Body box = MakeBox({0, 0, 0}, {1, 1, 1});
    ExpectSound(box);
    ASSERT_EQ(box.faceCount(), 6);
    for (const AModeler::Face* face : FacesOf(box))
        EXPECT_EQ(face->edgeCount(), 4);
    EXPECT_EQ(PhysicalEdgesOf(box).size(), 12U);
    EXPECT_EQ(EulerCharacteristic(box), 2); // 8 - 12 + 6
}

TEST(Box, NormalsPointOutAlongTheAxes)
{
    AModeler::Body box = MakeBox({1, 2, 3}, {2, 4, 6});
    AcGeVector3d sum;
    for (AModeler::Face* face : FacesOf(box)) {
        const AcGeVector3d normal = NormalOf(*face);
        EXPECT_NEAR(normal.length(), 1.0, 1e-15);
        // From the middle of the box, each face lies where its normal points.
        const AcGeVector3d arm = face->edgeLoop()->vertex()->point() - AcGePoint3d(1.5, 3.0, 4.5);
        EXPECT_GT(arm.dotProduct(normal), 0.4);
        sum = sum + normal;
    }
    EXPECT_NEAR(sum.length(), 0.0, 1e-15);
}

TEST(Box, HasItsVolumeWhereverItLies)
{
    AModeler::Body box = MakeBox({1, 2, 3}, {2, 4, 6});
    EXPECT_NEAR(VolumeOf(box), 6.0, 1e-12);
    AModeler::Body negative = MakeBox({-2, -4, -6}, {-1, -2, -3});
    EXPECT_NEAR(VolumeOf(negative), 6.0, 1e-12);
}

TEST(Box, CornersAreThoseGiven)
{
    AModeler::Body box = MakeBox({1, 2, 3}, {2, 4, 6});
    for (const AModeler::Face* face : FacesOf(box))
        for (const AcGePoint3d& corner : CornersOf(*face)) {
            EXPECT_TRUE(corner.x == 1.0 || corner.x == 2.0);
            EXPECT_TRUE(corner.y == 2.0 || corner.y == 4.0);
            EXPECT_TRUE(corner.z == 3.0 || corner.z == 6.0);
        }
}

TEST(Box, RefusesCornersOutOfOrderAndFlatBoxes)
{
    EXPECT_TRUE(Refuses([] { return MakeBox({0, 0, 0}, {1, 1, 0}); }));
    EXPECT_TRUE(Refuses([] { return MakeBox({0, 0, 0}, {0, 1, 1}); }));
    EXPECT_TRUE(Refuses([] { return MakeBox({0, 1, 0}, {1, 0, 1}); }));
}

TEST(Box, RefusesNumbersThatAreNotFinite)
{
    EXPECT_TRUE(Refuses([] { return MakeBox({0, 0, 0}, {1, kNan, 1}); }));
    EXPECT_TRUE(Refuses([] { return MakeBox({0, 0, 0}, {1, 1, kInfinity}); }));
    EXPECT_TRUE(Refuses([] { return MakeBox({-kInfinity, 0, 0}, {1, 1, 1}); }));
}

TEST(Box, TinyAndHugeBoxesAreMade)
{
    for (const double side : {1e-100, 1e100}) {
        AModeler::Body box = MakeBox({0, 0, 0}, {side, side, side});
        EXPECT_NEAR(VolumeOf(box) / side / side / side, 1.0, 1e-12);
    }
}

TEST(Prism, EitherDirectionOfTheProfileAndOfTheSweep)
{
    for (const Points& loop : {kOutline, Reversed(kOutline)})
        for (const double way : {3.0, -3.0}) {
            AModeler::Body prism = MakePrism({loop}, {0, 0, way});
            ExpectSound(prism);
            EXPECT_EQ(prism.faceCount(), 6);
            EXPECT_NEAR(VolumeOf(prism), 12.0, 1e-12);
        }
}

TEST(Prism, SlantedDirectionShearsIt)
{
    AModeler::Body prism = MakePrism({kOutline}, {5, 1, 3});
    EXPECT_NEAR(VolumeOf(prism), 12.0, 1e-12); // the height counts
    EXPECT_EQ(EulerCharacteristic(prism), 2);
}

TEST(Prism, ConcaveProfileHasConvexEnds)
{
    AModeler::Body prism = MakePrism({kAngle}, {0, 0, 2});
    ExpectSound(prism);
    ExpectConvexFaces(prism);
    EXPECT_NEAR(VolumeOf(prism), 6.0, 1e-12);
    EXPECT_EQ(PhysicalEdgesOf(prism).size(), 18U); // 6 at either end, 6 between
    EXPECT_EQ(EulerCharacteristic(prism), 2);
    EXPECT_GE(prism.faceCount(), 6 + 2 + 2);
}

TEST(Prism, HoleInEitherDirection)
{
    for (const Points& hole : {kHole, Reversed(kHole)}) {
        AModeler::Body prism = MakePrism({kOutline, hole}, {0, 0, 2});
        ExpectSound(prism);
        ExpectConvexFaces(prism);
        EXPECT_NEAR(VolumeOf(prism), 6.0, 1e-12); // (4 - 1) x 2
        EXPECT_EQ(PhysicalEdgesOf(prism).size(), 24U);
        EXPECT_EQ(EulerCharacteristic(prism), 0); // a ring
    }
}

TEST(Prism, TwoHolesMakeATwofoldRing)
{
    const Points small{{0.1, 0.1, 0}, {0.3, 0.1, 0}, {0.3, 0.3, 0}, {0.1, 0.3, 0}};
    AModeler::Body prism = MakePrism({kOutline, kHole, small}, {0, 0, 1});
    EXPECT_NEAR(VolumeOf(prism), 2.96, 1e-12); // 4 - 1 - 0.04
    EXPECT_EQ(EulerCharacteristic(prism), -2);
}

TEST(Prism, RefusesProfilesWithoutArea)
{
    EXPECT_TRUE(Refuses([] { return MakePrism({}, {0, 0, 1}); }));
    EXPECT_TRUE(Refuses([] { return MakePrism({{}}, {0, 0, 1}); }));
    EXPECT_TRUE(Refuses([] { return MakePrism({{{0, 0, 0}, {1, 0, 0}}}, {0, 0, 1}); }));
    EXPECT_TRUE(Refuses([] { return MakePrism({{{0, 0, 0}, {1, 1, 0}, {2, 2, 0}}}, {0, 0, 1}); }));
    EXPECT_TRUE(Refuses([] { return MakePrism({kOutline, {{1, 1, 0}}}, {0, 0, 1}); }));
}

TEST(Prism, RefusesADirectionAlongTheProfile)
{
    EXPECT_TRUE(Refuses([] { return MakePrism({kOutline}, {1, 1, 0}); }));
    EXPECT_TRUE(Refuses([] { return MakePrism({kOutline}, {0, 0, 0}); }));
}

TEST(Prism, RefusesNumbersThatAreNotFinite)
{
    Points bad = kOutline;
    bad[2].x = kNan;
    EXPECT_TRUE(Refuses([&] { return MakePrism({bad}, {0, 0, 1}); }));
    bad[2].x = kInfinity;
    EXPECT_TRUE(Refuses([&] { return MakePrism({bad}, {0, 0, 1}); }));
    EXPECT_TRUE(Refuses([] { return MakePrism({kOutline}, {0, 0, kNan}); }));
    EXPECT_TRUE(Refuses([] { return MakePrism({kOutline}, {0, 0, kInfinity}); }));
}

TEST(Prism, RefusesLoopsThatCross)
{
    EXPECT_TRUE(Refuses([] { return MakePrism({{{0, 0, 0}, {3, 3, 0}, {3, 0, 0}, {0, 2, 0}}}, {0, 0, 1}); }));
    const Points outside{{5, 5, 0}, {6, 5, 0}, {6, 6, 0}};
    EXPECT_TRUE(Refuses([&] { return MakePrism({kOutline, outside}, {0, 0, 1}); }));
}

TEST(Revolution, CylinderIsAPrismOverAPolygon)
{
    AModeler::Body cylinder = MakeRevolution(kCylinder, 12);
    ExpectSound(cylinder);
    ExpectConvexFaces(cylinder);
    EXPECT_EQ(cylinder.faceCount(), 36); // 12 sides, and 12 triangles at either end
    EXPECT_EQ(EulerCharacteristic(cylinder), 2);
    EXPECT_NEAR(VolumeOf(cylinder), SectionArea(12, 2.0) * 3.0, 1e-12);
}

TEST(Revolution, OnlyTheCirclesAreSeenAsEdges)
{
    AModeler::Body cylinder = MakeRevolution(kCylinder, 12);
    const std::vector<AModeler::Edge*> edges = PhysicalEdgesOf(cylinder);
    EXPECT_EQ(edges.size(), 24U);
    for (const AModeler::Edge* edge : edges) {
        const AcGePoint3d& start = edge->vertex()->point();
        const AcGePoint3d& end = edge->next()->vertex()->point();
        EXPECT_EQ(start.z, end.z);
        EXPECT_NEAR(std::hypot(start.x, start.y), 2.0, 1e-15);
    }
}

TEST(Revolution, EitherDirectionOfTheProfile)
{
    AModeler::Body cylinder = MakeRevolution({kCylinder.rbegin(), kCylinder.rend()}, 12);
    EXPECT_NEAR(VolumeOf(cylinder), SectionArea(12, 2.0) * 3.0, 1e-12);
}

TEST(Revolution, StepsBeginAtX)
{
    AModeler::Body cylinder = MakeRevolution(kCylinder, 4);
    int at_x = 0;
    for (const AModeler::Face* face : FacesOf(cylinder))
        for (const AcGePoint3d& corner : CornersOf(*face))
            at_x += corner.x == 2.0 && corner.y == 0.0 && corner.z == 3.0 ? 1 : 0;
    EXPECT_EQ(at_x, 4); // two sides, two triangles
}

TEST(Revolution, ConeHasOneTip)
{
    AModeler::Body cone = MakeRevolution({{0, 0}, {1, 0}, {0, 2}}, 6);
    ExpectSound(cone);
    EXPECT_EQ(cone.faceCount(), 12);
    EXPECT_EQ(EulerCharacteristic(cone), 2); // 8 - 18 + 12
    EXPECT_NEAR(VolumeOf(cone), SectionArea(6, 1.0) * 2.0 / 3.0, 1e-12);
}

TEST(Revolution, RingIsARing)
{
    AModeler::Body ring = MakeRevolution({{1, 0}, {2, 0}, {2, 1}, {1, 1}}, 8);
    ExpectSound(ring);
    ExpectConvexFaces(ring);
    EXPECT_EQ(ring.faceCount(), 32);
    EXPECT_EQ(EulerCharacteristic(ring), 0);
    EXPECT_NEAR(VolumeOf(ring), SectionArea(8, 2.0) - SectionArea(8, 1.0), 1e-12);
}

TEST(Revolution, BallHasTwoPoles)
{
    std::vector<ProfilePoint> half_circle{{0, -1}};
    for (int i = 1; i < 8; ++i) {
        const double angle = std::numbers::pi * i / 8.0;
        half_circle.push_back({std::sin(angle), -std::cos(angle)});
    }
    half_circle.push_back({0, 1});
    AModeler::Body ball = MakeRevolution(half_circle, 16);
    ExpectSound(ball);
    EXPECT_EQ(ball.faceCount(), 8 * 16);
    EXPECT_EQ(EulerCharacteristic(ball), 2);
    // Slices between heights a and b. Their sections grow with the square of the radius, which is linear in
    // the height.
    double volume = 0.0;
    for (std::size_t i = 0; i + 1 < half_circle.size(); ++i) {
        const double r = half_circle[i].radius;
        const double s = half_circle[i + 1].radius;
        volume += SectionArea(16, 1.0) * (half_circle[i + 1].height - half_circle[i].height) *
                  (r * r + r * s + s * s) / 3.0;
    }
    EXPECT_NEAR(VolumeOf(ball), volume, 1e-12);
}

TEST(Revolution, FewestSteps)
{
    AModeler::Body body = MakeRevolution(kCylinder, 3);
    EXPECT_NEAR(VolumeOf(body), SectionArea(3, 2.0) * 3.0, 1e-12);
    EXPECT_TRUE(Refuses([] { return MakeRevolution(kCylinder, 2); }));
    EXPECT_TRUE(Refuses([] { return MakeRevolution(kCylinder, 0); }));
    EXPECT_TRUE(Refuses([] { return MakeRevolution(kCylinder, -5); }));
}

TEST(Revolution, RefusesProfilesWithoutArea)
{
    EXPECT_TRUE(Refuses([] { return MakeRevolution({}, 8); }));
    EXPECT_TRUE(Refuses([] { return MakeRevolution({{0, 0}, {1, 1}}, 8); }));
    EXPECT_TRUE(Refuses([] { return MakeRevolution({{0, 0}, {1, 1}, {2, 2}}, 8); }));
    EXPECT_TRUE(Refuses([] { return MakeRevolution({{0, 0}, {0, 1}, {0, 2}}, 8); }));
}

TEST(Revolution, RefusesBadPoints)
{
    EXPECT_TRUE(Refuses([] { return MakeRevolution({{-1, 0}, {1, 0}, {1, 1}}, 8); }));
    EXPECT_TRUE(Refuses([] { return MakeRevolution({{kNan, 0}, {1, 0}, {1, 1}}, 8); }));
    EXPECT_TRUE(Refuses([] { return MakeRevolution({{0, 0}, {1, kInfinity}, {1, 1}}, 8); }));
    EXPECT_TRUE(Refuses([] { return MakeRevolution({{0, 0}, {kInfinity, 0}, {1, 1}}, 8); }));
}

TEST(Revolution, RefusesAProfileThatCrossesItself)
{
    EXPECT_TRUE(Refuses([] { return MakeRevolution({{0, 0}, {3, 3}, {3, 0}, {0, 2}}, 8); }));
}
