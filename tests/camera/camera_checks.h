// Comparisons that the camera's tests share.
#pragma once

#include "camera/KARVGLCamera.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace karv_test
{

inline constexpr double kRadiansPerDegree = 0.017453292519943295;
inline constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
inline constexpr double kInfinity = std::numeric_limits<double>::infinity();
inline constexpr float kNaNf = std::numeric_limits<float>::quiet_NaN();
inline constexpr float kInfinityf = std::numeric_limits<float>::infinity();

inline const AcGeVector3d& x_axis = AcGeVector3d::kXAxis;
inline const AcGeVector3d& y_axis = AcGeVector3d::kYAxis;
inline const AcGeVector3d& z_axis = AcGeVector3d::kZAxis;

/// The single-precision 16.66, widened: degrees of a field of view per unit of parallel zoom.
inline constexpr double kDegreesPerZoom = 16.65999984741211;
static_assert(kDegreesPerZoom == static_cast<double>(16.66F));

inline double Sin(double degrees)
{
    return std::sin(degrees * kRadiansPerDegree);
}

inline double Cos(double degrees)
{
    return std::cos(degrees * kRadiansPerDegree);
}

/// Sets the process's tolerance of directions for its life.
class GlobalTolerance
{
  public:
    explicit GlobalTolerance(double equal_vector) { AcGeContext::gTol.setEqualVector(equal_vector); }
    GlobalTolerance(const GlobalTolerance&) = delete;
    GlobalTolerance& operator=(const GlobalTolerance&) = delete;
    ~GlobalTolerance() { AcGeContext::gTol = before_; }

  private:
    AcGeTol before_ = AcGeContext::gTol;
};

/// Whether a point or vector has these components, each within `tolerance`; NaN is near nothing.
template <typename Triple>
testing::AssertionResult IsAt(const Triple& actual, double x, double y, double z, double tolerance = 1e-12)
{
    const bool near = std::fabs(actual.x - x) <= tolerance && std::fabs(actual.y - y) <= tolerance &&
                      std::fabs(actual.z - z) <= tolerance;
    if (near)
        return testing::AssertionSuccess();
    return testing::AssertionFailure() << "(" << actual.x << ", " << actual.y << ", " << actual.z
                                       << ") is not (" << x << ", " << y << ", " << z << ")";
}

/// Whether two points or vectors are the same numbers.
template <typename Triple>
bool Same(const Triple& a, const Triple& b)
{
    return a.x == b.x && a.y == b.y && a.z == b.z;
}

inline bool SamePlace(const KARVGLCamera& a, const KARVGLCamera& b)
{
    return Same(a.position, b.position) && Same(a.target, b.target);
}

inline bool SameFrame(const KARVGLCamera& a, const KARVGLCamera& b)
{
    return Same(a.xAxis, b.xAxis) && Same(a.yAxis, b.yAxis) && Same(a.zAxis, b.zAxis) &&
           Same(a.upVector, b.upVector);
}

inline bool SameProjection(const KARVGLCamera& a, const KARVGLCamera& b)
{
    return a.aspect == b.aspect && a.nearPlane == b.nearPlane && a.farPlane == b.farPlane &&
           a.perspectiveOn == b.perspectiveOn && a.fieldOfView == b.fieldOfView && a.orthoZoom == b.orthoZoom;
}

/// Whether every field that can be observed is the same number.
inline bool SameCamera(const KARVGLCamera& a, const KARVGLCamera& b)
{
    return SamePlace(a, b) && SameFrame(a, b) && SameProjection(a, b);
}

/// A camera in front of `target`, `distance` away on the -Y side, with the world axes.
inline KARVGLCamera FrontCamera(double distance = 10.0, const AcGePoint3d& target = {0.0, 0.0, 0.0})
{
    KARVGLCamera camera;
    camera.target = target;
    camera.position = {target.x, target.y - distance, target.z};
    return camera;
}

/// A fresh camera put to a standard view.
inline KARVGLCamera View(void (KARVGLCamera::*set)())
{
    KARVGLCamera camera;
    (camera.*set)();
    return camera;
}

/// Whether the frame's axes are of length 1 and at right angles.
inline bool IsOrthonormal(const KARVGLCamera& camera, double tolerance = 1e-12)
{
    return std::fabs(camera.xAxis.length() - 1.0) <= tolerance &&
           std::fabs(camera.yAxis.length() - 1.0) <= tolerance &&
           std::fabs(camera.zAxis.length() - 1.0) <= tolerance &&
           std::fabs(camera.xAxis.dotProduct(camera.yAxis)) <= tolerance &&
           std::fabs(camera.yAxis.dotProduct(camera.zAxis)) <= tolerance &&
           std::fabs(camera.zAxis.dotProduct(camera.xAxis)) <= tolerance;
}

/// A camera whose fields are all different from each other and from the defaults.
inline KARVGLCamera DistinctCamera()
{
    KARVGLCamera camera;
    camera.position = {1.0, 2.0, 3.0};
    camera.target = {4.0, 5.0, 6.0};
    camera.xAxis = {0.0, 1.0, 0.0};
    camera.yAxis = {0.0, 0.0, 1.0};
    camera.zAxis = {1.0, 0.0, 0.0};
    camera.upVector = {7.0, 8.0, 9.0};
    camera.aspect = 1.5F;
    camera.nearPlane = 0.25F;
    camera.farPlane = 77.0F;
    camera.perspectiveOn = false;
    camera.fieldOfView = 33.0;
    camera.orthoZoom = 2.5;
    return camera;
}

inline KARVGLCamera ParallelCamera()
{
    KARVGLCamera camera;
    camera.perspectiveOn = false;
    return camera;
}

} // namespace karv_test
