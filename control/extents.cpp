// The extents of KARVOpenGLControl: the scene's box, its centre, and the camera's target and far distance
// that follow from them.
#include "control/KARVOpenGLControl.h"

#include "geometry/widening.h"
#include "module/guard.h"

using karv::Guarded;
using karv::Widened;

namespace
{

/// The scene size in diagonals of the scene's box.
constexpr double kSceneSizePerDiagonal = 1.2;

} // namespace

void KARVOpenGLControl::ComputeExtents(bool compute)
{
    Guarded<L"KARVOpenGLControl::ComputeExtents">([&] { computeExtentsOnAppend = compute; });
}

void KARVOpenGLControl::OverrideExtents(AcGePoint3d min_corner, AcGePoint3d max_corner)
{
    Guarded<L"KARVOpenGLControl::OverrideExtents">([&] {
        extentsMin = KARVGLVertex(min_corner.x, min_corner.y, min_corner.z);
        extentsMax = KARVGLVertex(max_corner.x, max_corner.y, max_corner.z);
        GLComputeCentroid();
    });
}

void KARVOpenGLControl::GLDetectExtents(KARVGraphicalEntity entity)
{
    Guarded<L"KARVOpenGLControl::GLDetectExtents">([&] {
        KARVGLVertex min;
        KARVGLVertex max;
        entity.GetExtents(min, max);
        if (!extentsSeeded) {
            // Both corners start at the far corner. The growth below lowers the near one.
            extentsMax = max;
            extentsMin = max;
            extentsSeeded = true;
        }
        KARVGraphicalEntity::DoesPointContainExtent(min, extentsMin, extentsMax);
        KARVGraphicalEntity::DoesPointContainExtent(max, extentsMin, extentsMax);
        GLComputeCentroid();
    });
}

void KARVOpenGLControl::GLComputeCentroid()
{
    Guarded<L"KARVOpenGLControl::GLComputeCentroid">([&] {
        centroid.x = (extentsMax.x + extentsMin.x) * 0.5F;
        centroid.y = (extentsMax.y + extentsMin.y) * 0.5F;
        centroid.z = (extentsMax.z + extentsMin.z) * 0.5F;
        // The diagonal and the product are each rounded to float.
        const auto diagonal = static_cast<float>(Widened(extentsMax).distanceTo(Widened(extentsMin)));
        sceneSize = static_cast<float>(static_cast<double>(diagonal) * kSceneSizePerDiagonal);
        if (!cameraSetByCaller)
            camera.SetTarget(Widened(centroid));
        camera.SetFarPlaneDistance(static_cast<double>(sceneSize));
    });
}
