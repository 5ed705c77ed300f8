// The host's geometry library: points, vectors, matrices and tolerances in double precision.
//
// All types are plain values. Components are never checked and no operation throws. NaN and infinities
// propagate, and a comparison with NaN is false. Angles are in radians. Sums are taken from left to right,
// x first. A length is the root of the sum of squares, which is accurate from about 1e-150 to 1e150. Any
// thread, except for AcGeContext::gTol, which must not be changed while another thread compares.
#pragma once

#include "platform/export.h"

#include <cmath>

/// The tolerances of comparisons: a distance for points and a length of the difference for vectors, in
/// model units.
struct AcGeTol {
    double equal_point = 1e-10;
    double equal_vector = 1e-10;

    [[nodiscard]] double equalPoint() const noexcept { return equal_point; }
    [[nodiscard]] double equalVector() const noexcept { return equal_vector; }
    void setEqualPoint(double value) noexcept { equal_point = value; }
    void setEqualVector(double value) noexcept { equal_vector = value; }
};

/// The defaults of the process.
struct AcGeContext {
    KARV_PLATFORM_API static AcGeTol gTol;
};

class AcGeMatrix3d;
class AcGePoint3d;

/// A vector in space.
class AcGeVector3d
{
  public:
    static const AcGeVector3d kIdentity;
    static const AcGeVector3d kXAxis;
    static const AcGeVector3d kYAxis;
    static const AcGeVector3d kZAxis;

    double x = 0.0;
    double y = 0.0;
    double z = 0.0;

    constexpr AcGeVector3d() = default;
    constexpr AcGeVector3d(double x_in, double y_in, double z_in) noexcept : x(x_in), y(y_in), z(z_in) {}

    AcGeVector3d& set(double x_in, double y_in, double z_in) noexcept { return *this = {x_in, y_in, z_in}; }

    [[nodiscard]] double length() const noexcept { return std::sqrt(lengthSqrd()); }
    [[nodiscard]] double lengthSqrd() const noexcept { return dotProduct(*this); }
    [[nodiscard]] double dotProduct(const AcGeVector3d& other) const noexcept
    {
        return (x * other.x + y * other.y) + z * other.z;
    }
    [[nodiscard]] AcGeVector3d crossProduct(const AcGeVector3d& other) const noexcept
    {
        return {y * other.z - z * other.y, z * other.x - x * other.z, x * other.y - y * other.x};
    }
    /// The angle between the vectors, in [0, pi], accurate near both ends; 0 where one of them is the zero
    /// vector.
    [[nodiscard]] KARV_PLATFORM_API double angleTo(const AcGeVector3d& other) const noexcept;

    /// This vector scaled to length 1. A vector no longer than the tolerance is returned unchanged.
    [[nodiscard]] KARV_PLATFORM_API AcGeVector3d
    normal(const AcGeTol& tol = AcGeContext::gTol) const noexcept;
    AcGeVector3d& normalize(const AcGeTol& tol = AcGeContext::gTol) noexcept { return *this = normal(tol); }
    AcGeVector3d& negate() noexcept { return *this = -*this; }

    /// Whether the length of the difference is at most the tolerance.
    [[nodiscard]] bool isEqualTo(const AcGeVector3d& other,
                                 const AcGeTol& tol = AcGeContext::gTol) const noexcept
    {
        return (*this - other).isZeroLength(tol);
    }
    /// Whether the unit vectors are equal or opposite. A vector no longer than the tolerance is parallel to
    /// every vector, whatever that vector holds.
    [[nodiscard]] KARV_PLATFORM_API bool isParallelTo(const AcGeVector3d& other,
                                                      const AcGeTol& tol = AcGeContext::gTol) const noexcept;
    /// Whether the unit vectors are equal. A vector no longer than the tolerance is codirectional with no
    /// vector.
    [[nodiscard]] KARV_PLATFORM_API bool
    isCodirectionalTo(const AcGeVector3d& other, const AcGeTol& tol = AcGeContext::gTol) const noexcept;
    /// Whether the length is at most the tolerance.
    [[nodiscard]] bool isZeroLength(const AcGeTol& tol = AcGeContext::gTol) const noexcept
    {
        return length() <= tol.equalVector();
    }

    /// Applies the linear part of the matrix. Translations do not change vectors.
    KARV_PLATFORM_API AcGeVector3d& transformBy(const AcGeMatrix3d& matrix) noexcept;

    AcGeVector3d operator+(const AcGeVector3d& other) const noexcept
    {
        return {x + other.x, y + other.y, z + other.z};
    }
    AcGeVector3d operator-(const AcGeVector3d& other) const noexcept
    {
        return {x - other.x, y - other.y, z - other.z};
    }
    AcGeVector3d operator-() const noexcept { return {-x, -y, -z}; }
    AcGeVector3d operator*(double factor) const noexcept { return {x * factor, y * factor, z * factor}; }
    AcGeVector3d operator/(double divisor) const noexcept { return {x / divisor, y / divisor, z / divisor}; }
};

inline constexpr AcGeVector3d AcGeVector3d::kIdentity{0.0, 0.0, 0.0};
inline constexpr AcGeVector3d AcGeVector3d::kXAxis{1.0, 0.0, 0.0};
inline constexpr AcGeVector3d AcGeVector3d::kYAxis{0.0, 1.0, 0.0};
inline constexpr AcGeVector3d AcGeVector3d::kZAxis{0.0, 0.0, 1.0};

/// A point in space.
class AcGePoint3d
{
  public:
    static const AcGePoint3d kOrigin;

    double x = 0.0;
    double y = 0.0;
    double z = 0.0;

    constexpr AcGePoint3d() = default;
    constexpr AcGePoint3d(double x_in, double y_in, double z_in) noexcept : x(x_in), y(y_in), z(z_in) {}

    AcGePoint3d& set(double x_in, double y_in, double z_in) noexcept { return *this = {x_in, y_in, z_in}; }
    [[nodiscard]] AcGeVector3d asVector() const noexcept { return {x, y, z}; }
    [[nodiscard]] double distanceTo(const AcGePoint3d& other) const noexcept
    {
        return (other - *this).length();
    }
    /// Whether the distance is at most the tolerance.
    [[nodiscard]] bool isEqualTo(const AcGePoint3d& other,
                                 const AcGeTol& tol = AcGeContext::gTol) const noexcept
    {
        return distanceTo(other) <= tol.equalPoint();
    }

    /// Applies the linear part of the matrix, then its translation.
    KARV_PLATFORM_API AcGePoint3d& transformBy(const AcGeMatrix3d& matrix) noexcept;

    AcGePoint3d operator+(const AcGeVector3d& offset) const noexcept
    {
        return {x + offset.x, y + offset.y, z + offset.z};
    }
    AcGePoint3d operator-(const AcGeVector3d& offset) const noexcept
    {
        return {x - offset.x, y - offset.y, z - offset.z};
    }
    AcGeVector3d operator-(const AcGePoint3d& other) const noexcept
    {
        return {x - other.x, y - other.y, z - other.z};
    }
};

inline constexpr AcGePoint3d AcGePoint3d::kOrigin{0.0, 0.0, 0.0};

/// A 4x4 transformation of column vectors: `entry[row][column]`, with the translation in column 3.
/// Transforming points and vectors does not read the last row: there is no perspective.
class AcGeMatrix3d
{
  public:
    double entry[4][4] = {{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}};

    AcGeMatrix3d& setToIdentity() noexcept { return *this = AcGeMatrix3d(); }
    /// A rotation by `angle` radians about `axis` through `center`, by the right-hand rule. The axis need
    /// not have unit length. Where it is no longer than `AcGeContext::gTol` the result is the identity.
    KARV_PLATFORM_API AcGeMatrix3d& setToRotation(double angle, const AcGeVector3d& axis,
                                                  const AcGePoint3d& center = AcGePoint3d::kOrigin) noexcept;
    KARV_PLATFORM_API AcGeMatrix3d& setToTranslation(const AcGeVector3d& offset) noexcept;
    /// The transformation that maps the first frame (origin and axes) to the second. The axes need be
    /// neither of unit length nor perpendicular. Where the axes of the first frame lie in one plane the
    /// entries are not finite.
    KARV_PLATFORM_API AcGeMatrix3d&
    setToAlignCoordSys(const AcGePoint3d& from_origin, const AcGeVector3d& from_x, const AcGeVector3d& from_y,
                       const AcGeVector3d& from_z, const AcGePoint3d& to_origin, const AcGeVector3d& to_x,
                       const AcGeVector3d& to_y, const AcGeVector3d& to_z) noexcept;
    [[nodiscard]] static AcGeMatrix3d alignCoordSys(const AcGePoint3d& from_origin,
                                                    const AcGeVector3d& from_x, const AcGeVector3d& from_y,
                                                    const AcGeVector3d& from_z, const AcGePoint3d& to_origin,
                                                    const AcGeVector3d& to_x, const AcGeVector3d& to_y,
                                                    const AcGeVector3d& to_z) noexcept
    {
        return AcGeMatrix3d().setToAlignCoordSys(from_origin, from_x, from_y, from_z, to_origin, to_x, to_y,
                                                 to_z);
    }

    /// The transformation that applies `other` first, then this one.
    [[nodiscard]] KARV_PLATFORM_API AcGeMatrix3d operator*(const AcGeMatrix3d& other) const noexcept;
};
