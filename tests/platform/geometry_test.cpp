#include "platform/host/ge/geometry.h"

#include "tests/support/non_finite.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

using karv_test::kInfinity;
using karv_test::kNan;

namespace
{

constexpr double kPi = std::numbers::pi;
constexpr double kRounding = 1e-15;

void ExpectNear(const AcGeVector3d& actual, const AcGeVector3d& expected, double tolerance = kRounding)
{
    EXPECT_NEAR(actual.x, expected.x, tolerance);
    EXPECT_NEAR(actual.y, expected.y, tolerance);
    EXPECT_NEAR(actual.z, expected.z, tolerance);
}

void ExpectNear(const AcGePoint3d& actual, const AcGePoint3d& expected, double tolerance = kRounding)
{
    ExpectNear(actual.asVector(), expected.asVector(), tolerance);
}

void ExpectIdentity(const AcGeMatrix3d& matrix)
{
    for (int row = 0; row < 4; ++row)
        for (int column = 0; column < 4; ++column)
            EXPECT_EQ(matrix.entry[row][column], row == column ? 1.0 : 0.0) << row << ", " << column;
}

AcGeVector3d Turned(AcGeVector3d vector, double angle, const AcGeVector3d& pivot)
{
    return vector.transformBy(AcGeMatrix3d().setToRotation(angle, pivot));
}

// Tolerances.

TEST(Geometry, DefaultToleranceIs1e10)
{
    EXPECT_EQ(AcGeContext::gTol.equalPoint(), 1e-10);
    EXPECT_EQ(AcGeContext::gTol.equalVector(), 1e-10);
    EXPECT_EQ(AcGeTol().equalPoint(), 1e-10);
    EXPECT_EQ(AcGeTol().equalVector(), 1e-10);
}

TEST(Geometry, TolerancesOfPointsAndVectorsAreSeparate)
{
    AcGeTol tol;
    tol.setEqualPoint(0.5);
    tol.setEqualVector(0.25);
    EXPECT_TRUE(AcGePoint3d(0.5, 0.0, 0.0).isEqualTo(AcGePoint3d::kOrigin, tol));
    EXPECT_FALSE(AcGeVector3d(0.5, 0.0, 0.0).isEqualTo(AcGeVector3d::kIdentity, tol));
    EXPECT_TRUE(AcGeVector3d(0.25, 0.0, 0.0).isEqualTo(AcGeVector3d::kIdentity, tol));
}

TEST(Geometry, DefaultToleranceIsTheOneOfTheProcess)
{
    const AcGeTol before = AcGeContext::gTol;
    AcGeContext::gTol.setEqualVector(0.5);
    EXPECT_TRUE(AcGeVector3d(0.5, 0.0, 0.0).isZeroLength());
    AcGeContext::gTol = before;
    EXPECT_FALSE(AcGeVector3d(0.5, 0.0, 0.0).isZeroLength());
}

// Vectors and points.

TEST(Geometry, ConstantsAreOriginAndWorldAxes)
{
    ExpectNear(AcGeVector3d::kIdentity, {0.0, 0.0, 0.0}, 0.0);
    ExpectNear(AcGeVector3d::kXAxis, {1.0, 0.0, 0.0}, 0.0);
    ExpectNear(AcGeVector3d::kYAxis, {0.0, 1.0, 0.0}, 0.0);
    ExpectNear(AcGeVector3d::kZAxis, {0.0, 0.0, 1.0}, 0.0);
    ExpectNear(AcGePoint3d::kOrigin, {0.0, 0.0, 0.0}, 0.0);
}

TEST(Geometry, NewValuesAreZero)
{
    ExpectNear(AcGeVector3d(), {0.0, 0.0, 0.0}, 0.0);
    ExpectNear(AcGePoint3d(), {0.0, 0.0, 0.0}, 0.0);
    ExpectIdentity(AcGeMatrix3d());
}

// 2 * 2 + 3 * 3 + 6 * 6 = 49.
TEST(Geometry, LengthIsTheRootOfTheSquares)
{
    const AcGeVector3d vector(2.0, -3.0, 6.0);
    EXPECT_EQ(vector.lengthSqrd(), 49.0);
    EXPECT_EQ(vector.length(), 7.0);
}

// 1 * 4 - 2 * 5 + 3 * 6 = 12; (2 * 6 + 3 * 5, 3 * 4 - 1 * 6, -1 * 5 - 2 * 4) = (27, 6, -13).
TEST(Geometry, ProductsOfVectors)
{
    const AcGeVector3d a(1.0, 2.0, 3.0);
    const AcGeVector3d b(4.0, -5.0, 6.0);
    EXPECT_EQ(a.dotProduct(b), 12.0);
    ExpectNear(a.crossProduct(b), {27.0, 6.0, -13.0}, 0.0);
    ExpectNear(b.crossProduct(a), {-27.0, -6.0, 13.0}, 0.0);
}

TEST(Geometry, CrossProductsOfWorldAxesAreRightHanded)
{
    ExpectNear(AcGeVector3d::kXAxis.crossProduct(AcGeVector3d::kYAxis), AcGeVector3d::kZAxis, 0.0);
    ExpectNear(AcGeVector3d::kYAxis.crossProduct(AcGeVector3d::kZAxis), AcGeVector3d::kXAxis, 0.0);
    ExpectNear(AcGeVector3d::kZAxis.crossProduct(AcGeVector3d::kXAxis), AcGeVector3d::kYAxis, 0.0);
}

TEST(Geometry, CrossProductOfParallelVectorsIsExactlyZero)
{
    ExpectNear(AcGeVector3d(0.1, 0.2, 0.3).crossProduct(AcGeVector3d(0.2, 0.4, 0.6)), {0.0, 0.0, 0.0}, 0.0);
}

TEST(Geometry, SumsDifferencesAndMultiples)
{
    const AcGeVector3d a(1.0, 2.0, 3.0);
    const AcGeVector3d b(4.0, 6.0, 8.0);
    ExpectNear(a + b, {5.0, 8.0, 11.0}, 0.0);
    ExpectNear(b - a, {3.0, 4.0, 5.0}, 0.0);
    ExpectNear(-a, {-1.0, -2.0, -3.0}, 0.0);
    ExpectNear(a * -2.0, {-2.0, -4.0, -6.0}, 0.0);
    ExpectNear(b / 2.0, {2.0, 3.0, 4.0}, 0.0);
}

TEST(Geometry, PointsAndVectors)
{
    const AcGePoint3d point(1.0, 2.0, 3.0);
    const AcGeVector3d offset(10.0, 20.0, 30.0);
    ExpectNear(point + offset, {11.0, 22.0, 33.0}, 0.0);
    ExpectNear(point - offset, {-9.0, -18.0, -27.0}, 0.0);
    ExpectNear(point - AcGePoint3d(4.0, 4.0, 4.0), AcGeVector3d(-3.0, -2.0, -1.0), 0.0);
    EXPECT_EQ(point.distanceTo({3.0, 5.0, 9.0}), 7.0);
}

TEST(Geometry, SettersAnswerTheObject)
{
    AcGeVector3d vector;
    EXPECT_EQ(&vector.set(3.0, 0.0, 4.0), &vector);
    ExpectNear(vector, {3.0, 0.0, 4.0}, 0.0);
    EXPECT_EQ(&vector.negate(), &vector);
    ExpectNear(vector, {-3.0, 0.0, -4.0}, 0.0);
    EXPECT_EQ(&vector.normalize(), &vector);
    ExpectNear(vector, {-0.6, 0.0, -0.8});
    AcGePoint3d point;
    EXPECT_EQ(&point.set(1.0, 2.0, 3.0), &point);
    ExpectNear(point, {1.0, 2.0, 3.0}, 0.0);
}

TEST(Geometry, DivisionByZeroIsInfiniteAndDoesNotThrow)
{
    const AcGeVector3d quotient = AcGeVector3d(1.0, -1.0, 0.0) / 0.0;
    EXPECT_EQ(quotient.x, kInfinity);
    EXPECT_EQ(quotient.y, -kInfinity);
    EXPECT_TRUE(std::isnan(quotient.z));
}

// Unit vectors.

TEST(Geometry, NormalHasLengthOneAndLeavesTheVector)
{
    const AcGeVector3d vector(2.0, -3.0, 6.0);
    ExpectNear(vector.normal(), {2.0 / 7.0, -3.0 / 7.0, 6.0 / 7.0});
    ExpectNear(vector, {2.0, -3.0, 6.0}, 0.0);
}

TEST(Geometry, VectorAsLongAsTheToleranceStaysAsItIs)
{
    ExpectNear(AcGeVector3d(0.0, 1e-10, 0.0).normal(), {0.0, 1e-10, 0.0}, 0.0);
    ExpectNear(AcGeVector3d().normal(), {0.0, 0.0, 0.0}, 0.0);
    AcGeVector3d vector(0.0, 0.0, -5e-11);
    ExpectNear(vector.normalize(), {0.0, 0.0, -5e-11}, 0.0);
}

TEST(Geometry, VectorJustLongerThanTheToleranceIsNormalised)
{
    ExpectNear(AcGeVector3d(0.0, 1.0001e-10, 0.0).normal(), {0.0, 1.0, 0.0});
}

TEST(Geometry, ToleranceOfNormalisingCanBeGiven)
{
    AcGeTol tol;
    tol.setEqualVector(2.0);
    ExpectNear(AcGeVector3d(2.0, 0.0, 0.0).normal(tol), {2.0, 0.0, 0.0}, 0.0);
    ExpectNear(AcGeVector3d(2.5, 0.0, 0.0).normal(tol), {1.0, 0.0, 0.0}, 0.0);
}

TEST(Geometry, NanFlowsThroughNormalising)
{
    EXPECT_TRUE(std::isnan(AcGeVector3d(kNan, 1.0, 0.0).normal().y));
}

TEST(Geometry, LargeAndSmallVectorsAreNormalised)
{
    ExpectNear(AcGeVector3d(3e149, 0.0, 4e149).normal(), {0.6, 0.0, 0.8});
    AcGeTol exact;
    exact.setEqualVector(0.0);
    ExpectNear(AcGeVector3d(3e-149, 0.0, 4e-149).normal(exact), {0.6, 0.0, 0.8});
}

// Comparisons.

TEST(Geometry, EqualUpToTheToleranceAndNotBeyond)
{
    const AcGeVector3d zero;
    EXPECT_TRUE(AcGeVector3d(1e-10, 0.0, 0.0).isEqualTo(zero));
    EXPECT_FALSE(AcGeVector3d(1.0001e-10, 0.0, 0.0).isEqualTo(zero));
    EXPECT_TRUE(AcGePoint3d(0.0, 1e-10, 0.0).isEqualTo(AcGePoint3d::kOrigin));
    EXPECT_FALSE(AcGePoint3d(0.0, 1.0001e-10, 0.0).isEqualTo(AcGePoint3d::kOrigin));
}

// Each component is within the tolerance, the length sqrt(3) * 0.9e-10 = 1.56e-10 is not.
TEST(Geometry, EqualityMeasuresTheLengthOfTheDifference)
{
    EXPECT_FALSE(AcGeVector3d(0.9e-10, 0.9e-10, 0.9e-10).isEqualTo(AcGeVector3d()));
    EXPECT_FALSE(AcGePoint3d(0.9e-10, 0.9e-10, 0.9e-10).isEqualTo(AcGePoint3d::kOrigin));
}

TEST(Geometry, NothingEqualsNanOrInfinity)
{
    const AcGeVector3d nan(kNan, 0.0, 0.0);
    const AcGeVector3d infinite(kInfinity, 0.0, 0.0);
    EXPECT_FALSE(nan.isEqualTo(nan));
    EXPECT_FALSE(infinite.isEqualTo(infinite)) << "the difference is no number";
    EXPECT_FALSE(infinite.isEqualTo(AcGeVector3d::kXAxis));
    EXPECT_FALSE(nan.isParallelTo(nan));
    EXPECT_FALSE(infinite.isParallelTo(AcGeVector3d::kXAxis));
    EXPECT_FALSE(nan.isCodirectionalTo(AcGeVector3d::kXAxis));
}

TEST(Geometry, ZeroLengthIsUpToTheTolerance)
{
    EXPECT_TRUE(AcGeVector3d().isZeroLength());
    EXPECT_TRUE(AcGeVector3d(0.0, 0.0, -1e-10).isZeroLength());
    EXPECT_FALSE(AcGeVector3d(0.0, 0.0, -1.0001e-10).isZeroLength());
    EXPECT_FALSE(AcGeVector3d(kNan, 0.0, 0.0).isZeroLength());
}

TEST(Geometry, ParallelWhateverTheLengthAndTheSense)
{
    const AcGeVector3d vector(1.0, 2.0, 3.0);
    EXPECT_TRUE(vector.isParallelTo(vector * 1e6));
    EXPECT_TRUE(vector.isParallelTo(vector * -1e-6));
    EXPECT_FALSE(vector.isParallelTo({1.0, 2.0, 3.001}));
    EXPECT_FALSE(AcGeVector3d::kXAxis.isParallelTo(AcGeVector3d::kYAxis));
}

TEST(Geometry, CodirectionalOnlyInTheSameSense)
{
    const AcGeVector3d vector(1.0, 2.0, 3.0);
    EXPECT_TRUE(vector.isCodirectionalTo(vector * 1e6));
    EXPECT_FALSE(vector.isCodirectionalTo(vector * -1.0));
    EXPECT_FALSE(vector.isCodirectionalTo({1.0, 2.0, 3.001}));
}

// A small slope is the distance of the unit vectors: (1, s, 0) normalised lies s from (1, 0, 0).
TEST(Geometry, DirectionsAgreeUpToTheTolerance)
{
    EXPECT_TRUE(AcGeVector3d(5.0, 5.0 * 0.99e-10, 0.0).isParallelTo(AcGeVector3d::kXAxis));
    EXPECT_FALSE(AcGeVector3d(5.0, 5.0 * 1.01e-10, 0.0).isParallelTo(AcGeVector3d::kXAxis));
    EXPECT_TRUE(AcGeVector3d(-5.0, 5.0 * 0.99e-10, 0.0).isParallelTo(AcGeVector3d::kXAxis));
    EXPECT_FALSE(AcGeVector3d(-5.0, 5.0 * 1.01e-10, 0.0).isParallelTo(AcGeVector3d::kXAxis));
    EXPECT_TRUE(AcGeVector3d(5.0, 5.0 * 0.99e-10, 0.0).isCodirectionalTo(AcGeVector3d::kXAxis));
    EXPECT_FALSE(AcGeVector3d(5.0, 5.0 * 1.01e-10, 0.0).isCodirectionalTo(AcGeVector3d::kXAxis));
}

TEST(Geometry, VectorNoLongerThanTheToleranceIsParallelToEveryVector)
{
    const AcGeVector3d zero;
    const AcGeVector3d short_one(1e-10, 0.0, 0.0);
    EXPECT_TRUE(zero.isParallelTo(zero));
    EXPECT_TRUE(zero.isParallelTo(AcGeVector3d::kXAxis));
    EXPECT_TRUE(AcGeVector3d::kZAxis.isParallelTo(zero));
    EXPECT_TRUE(short_one.isParallelTo(AcGeVector3d::kZAxis));
    EXPECT_TRUE(AcGeVector3d::kZAxis.isParallelTo(short_one));
    EXPECT_FALSE(AcGeVector3d::kZAxis.isParallelTo({1.0001e-10, 0.0, 0.0}));
    EXPECT_TRUE(AcGeVector3d::kXAxis.isParallelTo({1.0001e-10, 0.0, 0.0}));
}

TEST(Geometry, LengthUpToWhichVectorsAreParallelToEveryVectorIsTheTolerances)
{
    AcGeTol coarse;
    coarse.setEqualVector(0.5);
    EXPECT_TRUE(AcGeVector3d::kZAxis.isParallelTo({0.5, 0.0, 0.0}, coarse));
    EXPECT_FALSE(AcGeVector3d::kZAxis.isParallelTo({0.51, 0.0, 0.0}, coarse));
}

TEST(Geometry, ZeroVectorIsCodirectionalWithNothing)
{
    const AcGeVector3d zero;
    const AcGeVector3d short_one(1e-10, 0.0, 0.0);
    EXPECT_FALSE(zero.isCodirectionalTo(zero));
    EXPECT_FALSE(zero.isCodirectionalTo(AcGeVector3d::kXAxis));
    EXPECT_FALSE(AcGeVector3d::kXAxis.isCodirectionalTo(short_one));
}

// Angles.

TEST(Geometry, AnglesOfKnownDirections)
{
    EXPECT_NEAR(AcGeVector3d::kXAxis.angleTo(AcGeVector3d::kYAxis), kPi / 2.0, kRounding);
    EXPECT_NEAR(AcGeVector3d::kXAxis.angleTo({7.0, 7.0, 0.0}), kPi / 4.0, kRounding);
    EXPECT_NEAR(AcGeVector3d(0.0, -2.0, 0.0).angleTo({0.0, 1.0, std::sqrt(3.0)}), kPi * 2.0 / 3.0, kRounding);
}

TEST(Geometry, AngleIsTheSameBothWaysRound)
{
    const AcGeVector3d a(1.0, 2.0, 3.0);
    const AcGeVector3d b(-3.0, 0.5, 1.0);
    EXPECT_EQ(a.angleTo(b), b.angleTo(a));
}

TEST(Geometry, AngleAtTheEndsIsExact)
{
    const AcGeVector3d vector(1.0, 2.0, 3.0);
    EXPECT_EQ(vector.angleTo(vector * 4.0), 0.0);
    EXPECT_EQ(vector.angleTo(vector * -4.0), kPi);
}

// A slope s makes the angle atan(s) = s - s^3 / 3; an arc cosine would lose a slope of 1e-9.
TEST(Geometry, AngleNearZeroAndNearPiIsAccurate)
{
    for (const double slope : {1e-5, 1e-7, 1e-9}) {
        EXPECT_NEAR(AcGeVector3d::kXAxis.angleTo({1.0, slope, 0.0}), slope - slope * slope * slope / 3.0,
                    slope * 1e-9);
        EXPECT_NEAR(kPi - AcGeVector3d::kXAxis.angleTo({-1.0, slope, 0.0}), slope, 1e-15 + slope * 1e-9);
    }
}

TEST(Geometry, AngleToTheZeroVectorIsZero)
{
    const AcGeVector3d zero;
    EXPECT_EQ(zero.angleTo(zero), 0.0);
    EXPECT_EQ(zero.angleTo(AcGeVector3d::kZAxis), 0.0);
    EXPECT_EQ(zero.angleTo({-1.0, -1.0, -1.0}), 0.0) << "the products are negative zeros";
    EXPECT_EQ(AcGeVector3d(-1.0, -1.0, -1.0).angleTo(zero), 0.0);
}

TEST(Geometry, AngleOfNanIsNan)
{
    EXPECT_TRUE(std::isnan(AcGeVector3d(kNan, 0.0, 0.0).angleTo(AcGeVector3d::kZAxis)));
}

// Rotations.

TEST(Geometry, QuarterTurnsFollowTheRightHand)
{
    const double quarter = kPi / 2.0;
    ExpectNear(Turned(AcGeVector3d::kXAxis, quarter, AcGeVector3d::kZAxis), AcGeVector3d::kYAxis);
    ExpectNear(Turned(AcGeVector3d::kYAxis, quarter, AcGeVector3d::kXAxis), AcGeVector3d::kZAxis);
    ExpectNear(Turned(AcGeVector3d::kZAxis, quarter, AcGeVector3d::kYAxis), AcGeVector3d::kXAxis);
    ExpectNear(Turned(AcGeVector3d::kXAxis, -quarter, AcGeVector3d::kZAxis), -AcGeVector3d::kYAxis);
}

// cos 30 = sqrt(3) / 2, sin 30 = 1 / 2.
TEST(Geometry, TurnOfThirtyDegrees)
{
    const double root = std::sqrt(3.0);
    ExpectNear(Turned({2.0, 0.0, 5.0}, kPi / 6.0, AcGeVector3d::kZAxis), {root, 1.0, 5.0});
}

// A third of a turn about the diagonal of a cube moves each axis to the next.
TEST(Geometry, TurnAboutADiagonal)
{
    const AcGeVector3d diagonal(1.0, 1.0, 1.0);
    ExpectNear(Turned(AcGeVector3d::kXAxis, kPi * 2.0 / 3.0, diagonal), AcGeVector3d::kYAxis);
    ExpectNear(Turned(AcGeVector3d::kYAxis, kPi * 2.0 / 3.0, diagonal), AcGeVector3d::kZAxis);
    ExpectNear(Turned(AcGeVector3d::kZAxis, kPi * 2.0 / 3.0, diagonal), AcGeVector3d::kXAxis);
    ExpectNear(Turned(diagonal, 1.0, diagonal), diagonal);
}

TEST(Geometry, AxisNeedNotHaveUnitLength)
{
    for (const double length : {1e-9, 0.5, 1e9})
        ExpectNear(Turned(AcGeVector3d::kXAxis, kPi / 2.0, {0.0, 0.0, length}), AcGeVector3d::kYAxis);
}

TEST(Geometry, TurnAboutAZeroAxisIsTheIdentity)
{
    AcGeMatrix3d matrix;
    matrix.setToTranslation({1.0, 2.0, 3.0});
    ExpectIdentity(matrix.setToRotation(1.0, AcGeVector3d(), {1.0, 2.0, 3.0}));
    ExpectIdentity(matrix.setToRotation(1.0, {0.0, 1e-10, 0.0}));
}

TEST(Geometry, TurnByZeroIsTheIdentity)
{
    ExpectIdentity(AcGeMatrix3d().setToRotation(0.0, {1.0, 2.0, 3.0}));
    ExpectIdentity(AcGeMatrix3d().setToRotation(0.0, AcGeVector3d::kZAxis, {4.0, 5.0, 6.0}));
}

// (4, 2) - (1, 2) = (3, 0), turned (0, 3), and back: (1, 5).
TEST(Geometry, TurnAboutACenterLeavesTheCenter)
{
    const AcGePoint3d center(1.0, 2.0, 3.0);
    const AcGeMatrix3d matrix = AcGeMatrix3d().setToRotation(kPi / 2.0, AcGeVector3d::kZAxis, center);
    AcGePoint3d point(4.0, 2.0, 9.0);
    ExpectNear(point.transformBy(matrix), {1.0, 5.0, 9.0});
    AcGePoint3d fixed = center;
    ExpectNear(fixed.transformBy(matrix), center);
}

TEST(Geometry, TurnAndTurnBackIsTheIdentity)
{
    const AcGeVector3d axis(0.3, -2.0, 0.7);
    const AcGePoint3d center(1.0, 2.0, 3.0);
    const AcGeMatrix3d there = AcGeMatrix3d().setToRotation(0.8, axis, center);
    const AcGeMatrix3d back = AcGeMatrix3d().setToRotation(-0.8, axis, center);
    const AcGeMatrix3d both = back * there;
    for (int row = 0; row < 4; ++row)
        for (int column = 0; column < 4; ++column)
            EXPECT_NEAR(both.entry[row][column], row == column ? 1.0 : 0.0, 4 * kRounding);
}

TEST(Geometry, NanAngleFlowsThroughARotation)
{
    EXPECT_TRUE(std::isnan(Turned(AcGeVector3d::kXAxis, kNan, AcGeVector3d::kZAxis).x));
}

// Transformations.

TEST(Geometry, TranslationMovesPointsAndLeavesVectors)
{
    const AcGeMatrix3d matrix = AcGeMatrix3d().setToTranslation({10.0, 20.0, kInfinity});
    AcGePoint3d point(1.0, 2.0, 3.0);
    AcGeVector3d vector(1.0, 2.0, 3.0);
    EXPECT_EQ(&point.transformBy(matrix), &point);
    EXPECT_EQ(&vector.transformBy(matrix), &vector);
    ExpectNear(vector, {1.0, 2.0, 3.0}, 0.0);
    EXPECT_EQ(point.x, 11.0);
    EXPECT_EQ(point.y, 22.0);
    EXPECT_EQ(point.z, kInfinity);
}

TEST(Geometry, SettersOfMatricesDropWhatWasThere)
{
    AcGeMatrix3d matrix;
    matrix.setToRotation(1.0, {1.0, 1.0, 1.0}, {5.0, 5.0, 5.0});
    matrix.setToTranslation({1.0, 2.0, 3.0});
    AcGePoint3d point;
    ExpectNear(point.transformBy(matrix), {1.0, 2.0, 3.0}, 0.0);
    ExpectIdentity(matrix.setToIdentity());
}

// First the turn: (1, 0, 0) to (0, 1, 0); then the translation: (10, 1, 0).
TEST(Geometry, ProductAppliesItsRightFactorFirst)
{
    const AcGeMatrix3d turn = AcGeMatrix3d().setToRotation(kPi / 2.0, AcGeVector3d::kZAxis);
    const AcGeMatrix3d move = AcGeMatrix3d().setToTranslation({10.0, 0.0, 0.0});
    AcGePoint3d point(1.0, 0.0, 0.0);
    ExpectNear(point.transformBy(move * turn), {10.0, 1.0, 0.0});
    point.set(1.0, 0.0, 0.0);
    ExpectNear(point.transformBy(turn * move), {0.0, 11.0, 0.0});
}

TEST(Geometry, ProductTakesEveryEntry)
{
    AcGeMatrix3d a;
    AcGeMatrix3d b;
    for (int row = 0; row < 4; ++row) {
        for (int column = 0; column < 4; ++column) {
            a.entry[row][column] = row == 3 ? column + 1.0 : 0.0;
            b.entry[row][column] = column == 3 ? row + 1.0 : 0.0;
        }
    }
    const AcGeMatrix3d product = a * b;
    EXPECT_EQ(product.entry[3][3], 1.0 + 4.0 + 9.0 + 16.0);
    EXPECT_EQ(product.entry[0][0], 0.0);
}

TEST(Geometry, AligningCarriesOriginAndAxes)
{
    const AcGePoint3d from(1.0, 1.0, 1.0);
    const AcGePoint3d to(4.0, 5.0, 6.0);
    const AcGeMatrix3d matrix =
        AcGeMatrix3d::alignCoordSys(from, AcGeVector3d::kXAxis, AcGeVector3d::kYAxis, AcGeVector3d::kZAxis,
                                    to, AcGeVector3d::kYAxis, AcGeVector3d::kZAxis, AcGeVector3d::kXAxis);
    AcGePoint3d point = from;
    ExpectNear(point.transformBy(matrix), to, 0.0);
    point.set(3.0, 1.0, 1.0);
    ExpectNear(point.transformBy(matrix), {4.0, 7.0, 6.0}, 0.0);
    AcGeVector3d vector(1.0, 2.0, 3.0);
    ExpectNear(vector.transformBy(matrix), {3.0, 1.0, 2.0}, 0.0);
}

TEST(Geometry, AligningFromTurnedAxesTurnsBack)
{
    const AcGeMatrix3d matrix = AcGeMatrix3d::alignCoordSys(
        {1.0, 2.0, 3.0}, AcGeVector3d::kYAxis, AcGeVector3d::kZAxis, AcGeVector3d::kXAxis,
        AcGePoint3d::kOrigin, AcGeVector3d::kXAxis, AcGeVector3d::kYAxis, AcGeVector3d::kZAxis);
    AcGePoint3d point(1.0, 7.0, 3.0);
    ExpectNear(point.transformBy(matrix), {5.0, 0.0, 0.0}, 0.0);
}

// The oblique frame x = (2, 0, 0), y = (1, 1, 0), z = (0, 0, 4) measures (3, 1, 4) as (1, 1, 1).
TEST(Geometry, AligningTakesObliqueAxes)
{
    const AcGeMatrix3d matrix = AcGeMatrix3d::alignCoordSys(
        AcGePoint3d::kOrigin, {2.0, 0.0, 0.0}, {1.0, 1.0, 0.0}, {0.0, 0.0, 4.0}, AcGePoint3d::kOrigin,
        AcGeVector3d::kXAxis, AcGeVector3d::kYAxis, AcGeVector3d::kZAxis);
    AcGeVector3d vector(3.0, 1.0, 4.0);
    ExpectNear(vector.transformBy(matrix), {1.0, 1.0, 1.0}, 0.0);
}

TEST(Geometry, AligningAFrameToItselfIsTheIdentity)
{
    const AcGePoint3d origin(7.0, 8.0, 9.0);
    ExpectIdentity(AcGeMatrix3d::alignCoordSys(origin, AcGeVector3d::kXAxis, AcGeVector3d::kYAxis,
                                               AcGeVector3d::kZAxis, origin, AcGeVector3d::kXAxis,
                                               AcGeVector3d::kYAxis, AcGeVector3d::kZAxis));
}

TEST(Geometry, AligningFromAFlatFrameIsNotFiniteAndDoesNotThrow)
{
    const AcGeMatrix3d matrix = AcGeMatrix3d::alignCoordSys(
        AcGePoint3d::kOrigin, AcGeVector3d::kXAxis, AcGeVector3d::kYAxis, AcGeVector3d::kXAxis,
        AcGePoint3d::kOrigin, AcGeVector3d::kXAxis, AcGeVector3d::kYAxis, AcGeVector3d::kZAxis);
    EXPECT_FALSE(std::isfinite(matrix.entry[0][0]));
}

TEST(Geometry, HundredSmallTurnsAreOneLargeOne)
{
    const AcGeMatrix3d step = AcGeMatrix3d().setToRotation(kPi / 100.0, {1.0, 2.0, -2.0});
    AcGeVector3d vector(3.0, 4.0, 5.0);
    for (int turn = 0; turn < 100; ++turn)
        vector.transformBy(step);
    ExpectNear(vector, Turned({3.0, 4.0, 5.0}, kPi, {1.0, 2.0, -2.0}), 1e-13);
}

} // namespace
