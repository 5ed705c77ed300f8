// The planes of faces: direction and length of the normal, and the plane's place, for loops of every kind.
#include "tests/platform/modeler_checks.h"
#include "tests/support/non_finite.h"

using namespace karv_test;

namespace
{

/// The plane of a face with this loop. The body is built with a convex loop of as many corners, which stays
/// one face, and its corners are moved afterwards.
AModeler::Plane PlaneOf(const Points& corners)
{
    Points convex;
    for (std::size_t i = 0; i < corners.size(); ++i) {
        const double along = static_cast<double>(i);
        convex.emplace_back(along, along * along, 0.0); // on a parabola
    }
    AModeler::Body body = LaminaOf({convex}).Build();
    EXPECT_EQ(body.faceCount(), 2);
    for (std::size_t i = 0; i < corners.size(); ++i)
        body.vertices_[i].point_ = corners[i];
    body.faceList()->evaluatePlane();
    EXPECT_TRUE(body.faceList()->isPlaneEvaluated());
    return body.faceList()->plane();
}

void ExpectNormal(const AModeler::Plane& plane, double x, double y, double z)
{
    EXPECT_NEAR(plane.normal.x, x, 1e-12);
    EXPECT_NEAR(plane.normal.y, y, 1e-12);
    EXPECT_NEAR(plane.normal.z, z, 1e-12);
}

void ExpectNoPlane(const AModeler::Plane& plane)
{
    EXPECT_EQ(plane.normal.x, 0.0);
    EXPECT_EQ(plane.normal.y, 0.0);
    EXPECT_EQ(plane.normal.z, 0.0);
    EXPECT_EQ(plane.offset, 0.0);
}

// Clockwise seen from +Z: up, right, down.
const Points kSquare{{0, 0, 0}, {0, 2, 0}, {2, 2, 0}, {2, 0, 0}};

Points Scaled(const Points& corners, double factor)
{
    Points scaled;
    for (const AcGePoint3d& corner : corners)
        scaled.emplace_back(corner.x * factor, corner.y * factor, corner.z * factor);
    return scaled;
}

} // namespace

TEST(ModelerPlane, IsNotThereBeforeItIsEvaluated)
{
    AModeler::Body body = LaminaOf({kSquare}).Build();
    EXPECT_FALSE(body.faceList()->isPlaneEvaluated());
    ExpectNoPlane(body.faceList()->plane());
}

TEST(ModelerPlane, NormalPointsToTheSideFromWhichTheLoopRunsClockwise)
{
    ExpectNormal(PlaneOf(kSquare), 0, 0, 1);
    ExpectNormal(PlaneOf({kSquare.rbegin(), kSquare.rend()}), 0, 0, -1);
}

TEST(ModelerPlane, EveryAxisHasItsDirections)
{
    ExpectNormal(PlaneOf({{0, 0, 0}, {0, 0, 1}, {0, 1, 0}}), 1, 0, 0);  // seen from +X: Y right, Z up
    ExpectNormal(PlaneOf({{0, 0, 0}, {0, 0, 1}, {1, 0, 0}}), 0, -1, 0); // seen from -Y: X right, Z up
}

TEST(ModelerPlane, SlantedNormalHasUnitLength)
{
    // Through (3,0,0), (0,3,0), (0,0,3), counter-clockwise seen from (1,1,1), so that it points away from
    // there.
    const double part = -1.0 / std::sqrt(3.0);
    const AModeler::Plane plane = PlaneOf({{3, 0, 0}, {0, 3, 0}, {0, 0, 3}});
    ExpectNormal(plane, part, part, part);
    EXPECT_NEAR(plane.offset, std::sqrt(3.0), 1e-12); // -normal . (1,1,1)
}

TEST(ModelerPlane, OffsetPutsTheCornersOnThePlane)
{
    const AModeler::Plane plane = PlaneOf({{0, 0, 7}, {0, 2, 7}, {2, 2, 7}, {2, 0, 7}});
    EXPECT_NEAR(plane.normal.z * 7.0 + plane.offset, 0.0, 1e-12);
}

TEST(ModelerPlane, CornersInOneLineAtTheStartAreAllowed)
{
    ExpectNormal(PlaneOf({{0, 0, 0}, {0, 1, 0}, {0, 2, 0}, {2, 2, 0}, {2, 0, 0}}), 0, 0, 1);
}

TEST(ModelerPlane, ConcaveStartDoesNotTurnItRound)
{
    // An arrowhead whose notch at (1, 1) is the second corner: the first three turn the other way.
    ExpectNormal(PlaneOf({{2, 2, 0}, {1, 1, 0}, {2, 0, 0}, {-4, 1, 0}}), 0, 0, 1);
    ExpectNormal(PlaneOf({{1, 1, 0}, {2, 0, 0}, {-4, 1, 0}, {2, 2, 0}}), 0, 0, 1);
}

TEST(ModelerPlane, EqualCornersAreAllowed)
{
    ExpectNormal(PlaneOf({{0, 0, 0}, {0, 0, 0}, {0, 2, 0}, {2, 2, 0}, {2, 0, 0}, {2, 0, 0}}), 0, 0, 1);
}

TEST(ModelerPlane, WarpedLoopHasTheMeanPlane)
{
    // Two corners of the square up and two down by the same: the tilts cancel.
    ExpectNormal(PlaneOf({{0, 0, 0.5}, {0, 2, -0.5}, {2, 2, 0.5}, {2, 0, -0.5}}), 0, 0, 1);
}

TEST(ModelerPlane, TinyAndHugeFacesHaveTheirs)
{
    for (const double factor : {1e-300, 1e-160, 1e-12, 1e12, 1e160, 1e300})
        ExpectNormal(PlaneOf(Scaled(kSquare, factor)), 0, 0, 1);
}

TEST(ModelerPlane, SmallFaceFarFromTheOriginHasItsOwn)
{
    // Doubles near 1e9 are 1.2e-7 apart; the corners are exact.
    ExpectNormal(PlaneOf({{1e9, 1e9, 1e9}, {1e9, 1e9 + 0.25, 1e9}, {1e9 + 0.25, 1e9, 1e9}}), 0, 0, 1);
}

TEST(ModelerPlane, LoopInOneLineHasNone)
{
    ExpectNoPlane(PlaneOf({{0, 0, 0}, {1, 1, 1}, {2, 2, 2}}));
    ExpectNoPlane(PlaneOf({{0.1, 0.2, 0.3}, {0.3, 0.6, 0.9}, {0.7, 1.4, 2.1}, {0.2, 0.4, 0.6}}));
}

TEST(ModelerPlane, LoopInOnePointHasNone)
{
    ExpectNoPlane(PlaneOf({{1, 2, 3}, {1, 2, 3}, {1, 2, 3}}));
}

TEST(ModelerPlane, LoopOfEqualPartsBothWaysHasNone)
{
    ExpectNoPlane(PlaneOf({{0, 0, 0}, {2, 2, 0}, {2, 0, 0}, {0, 2, 0}})); // a bow tie
}

TEST(ModelerPlane, CoordinatesThatAreNotFiniteGiveNone)
{
    for (const double bad : {kNan, kInfinity, -kInfinity})
        for (std::size_t corner = 0; corner < 4; ++corner) {
            AModeler::Body body = LaminaOf({kSquare}).Build();
            body.vertices_[corner].point_.y = bad;
            body.faceList()->evaluatePlane();
            ExpectNoPlane(body.faceList()->plane());
            EXPECT_TRUE(body.faceList()->isPlaneEvaluated());
        }
}

TEST(ModelerPlane, FiniteCornersTooFarApartHaveNone)
{
    ExpectNoPlane(PlaneOf(Scaled({{-1, -1, 0}, {-1, 1, 0}, {1, 1, 0}, {1, -1, 0}}, 1.7e308)));
}

TEST(ModelerPlane, EvaluatingAgainFollowsTheCorners)
{
    AModeler::Body body = LaminaOf({kSquare}).Build();
    AModeler::Face& face = *body.faceList();
    face.evaluatePlane();
    for (AModeler::Vertex& vertex : body.vertices_)
        vertex.point_ = {vertex.point_.z, vertex.point_.x, vertex.point_.y};
    face.evaluatePlane();
    ExpectNormal(face.plane(), 1, 0, 0);
}

TEST(ModelerPlane, LoopThatEndsEarlyCountsAsFarAsItGoes)
{
    AModeler::Body body = LaminaOf({kSquare}).Build();
    EdgesOf(*body.faceList())[2]->next_ = nullptr; // leaves three corners
    body.faceList()->evaluatePlane();
    ExpectNormal(body.faceList()->plane(), 0, 0, 1);
}

TEST(ModelerPlane, FaceWithoutLoopHasNone)
{
    AModeler::Body body = LaminaOf({kSquare}).Build();
    body.faceList()->first_edge_ = nullptr;
    body.faceList()->evaluatePlane();
    ExpectNoPlane(body.faceList()->plane());
}
