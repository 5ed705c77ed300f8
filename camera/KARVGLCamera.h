// The camera of a viewport: eye point, target, the camera's own axes, and the projection. It knows neither
// the window nor the geometry. It loads its matrices into the current GL context and owns no context.
#pragma once

#include "module/export.h"
#include "platform/host/ge/geometry.h"

/// A camera. A plain value.
///
/// Lengths are in model units, angles in degrees. Arguments are not checked (a zero aspect gives infinite
/// extents). No operation throws: a fault is reported through the tools library, and fields written before it
/// keep their new values. Operations that load matrices need the viewport's GL context to be current and
/// leave the matrix mode at GL_MODELVIEW. The others touch no GL state. To be used on the viewport's thread
/// only.
class KARV_MODULE_API KARVGLCamera
{
  public:
    /// Eye and target are at the origin, the axes are the world axes. The projection is a perspective with a
    /// field of view of 40 degrees, aspect 1, near distance 0.01 and far distance 1000.
    KARVGLCamera();
    KARVGLCamera(const KARVGLCamera& source);
    KARVGLCamera& operator=(const KARVGLCamera& source);
    ~KARVGLCamera();

    /// Sets the eye point. The axes are not recomputed.
    void SetPosition(AcGePoint3d point);
    /// Sets the target, which is also the centre of rotations. The axes are not recomputed.
    void SetTarget(AcGePoint3d point);
    /// Sets the up vector that `GetCamera` returns. The camera's own axes do not change.
    void SetUpVector(AcGeVector3d vector);
    /// Sets the far distance to 100 times the scene distance `d`. The next `ZoomAt` uses it.
    void SetFarPlaneDistance(double d);
    /// Sets eye, target and up vector. The axes are not recomputed, so the next `UpdateCamera` still uses the
    /// old up axis: callers that drive the camera themselves depend on it.
    void SetCamera(AcGePoint3d position_in, AcGePoint3d target_in, AcGeVector3d up);
    /// Copies eye, target and up vector to the arguments. The up vector is the one last set, not the camera's
    /// up axis.
    void GetCamera(AcGePoint3d& position_out, AcGePoint3d& target_out, AcGeVector3d& up);
    /// Copies the camera's right, forward and up axes to the arguments.
    void GetLocalAxes(AcGeVector3d& x, AcGeVector3d& y, AcGeVector3d& z);
    /// Resets the axes to the world axes. Eye and target do not change.
    void ResetAngle();

    /// Loads the look-at matrix of eye, target and the camera's up axis.
    void UpdateCamera();
    /// Loads the projection for a viewport with this aspect (width / height) and a scene of size `distance`.
    /// `fov` is the vertical field of view; it is not limited. In perspective the near distance is 0.1 and
    /// the far distance 100 times the scene size. A parallel projection is as wide as the scene size; the
    /// zoom is not applied. Field of view, aspect and far distance are stored for the operations below.
    void RefreshCameraView(double fov, double distance, float aspect_in);
    /// Switches to perspective (true) or parallel projection and loads projection and view matrix.
    ///
    /// Switching to parallel projection pushes the perspective matrix on the projection stack; doing so twice
    /// has no further effect. Switching to perspective pops that stack, even if perspective is already on,
    /// and loads a projection with a negative near distance, which the next `ZoomAt` or `RefreshCameraView`
    /// replaces.
    void SetPerspectiveOn(bool on);
    /// Loads the projection at the zoom of the active projection. That zoom is first limited in place: `fov`
    /// to 0.01..150 degrees in perspective, `orthoZoomFactor` to 0.01..9 in parallel projection. The other
    /// argument is not changed. NaN is not limited.
    void ZoomAt(float& orthoZoomFactor, float& fov);

    // Standard views. The eye is placed one scene distance from the target, on the side that the name gives:
    // Front is -Y, Right is +X, Top is +Z, SE is +X, -Y and above. The axes turn with it, the up vector
    // becomes world Z, and the view matrix is loaded.

    void SetViewFront();
    void SetViewBack();
    void SetViewLeft();
    void SetViewRight();
    void SetViewTop();
    void SetViewBottom();
    void SetViewSE();
    void SetViewSW();
    void SetViewNE();
    void SetViewNW();

    // Motion. Directions are compared with the tolerance `AcGeContext::gTol`. No matrix is loaded: call
    // `UpdateCamera` afterwards.

    /// Rotates eye and axes about the target.
    ///
    /// World Z as the axis gives an orbit about it. Every other axis gives a tilt; a positive angle raises
    /// the eye. A tilt that would bring the line of sight closer than one degree to the vertical is ignored,
    /// unless it is exactly 90 degrees. If the line of sight is vertical, the tilt turns about world X.
    /// Angles of at most 1e-10 degrees, of either sign, are ignored.
    void RotateCamera(float angle_degrees, AcGeVector3d axis);
    /// Moves eye and target by `amount`: to the right of the line of sight for world X (along world X if the
    /// line of sight is vertical), up the screen for every other axis.
    void PanCamera(float amount, AcGeVector3d axis);
    /// Moves the eye along the camera's forward axis; a negative amount moves it back. A step that changes
    /// the direction to the target is ignored. This includes a step that reaches or passes the target.
    void ZoomCamera(float amount);

  private:
    AcGePoint3d position;
    AcGePoint3d target;
    AcGeVector3d xAxis;    ///< right
    AcGeVector3d yAxis;    ///< forward
    AcGeVector3d zAxis;    ///< up, used by the look-at
    AcGeVector3d upVector; ///< up, as set and read by callers
    double angle = 0.0;    ///< set by `ResetAngle`, never read
    float aspect = 1.0F;   ///< width / height
    float nearPlane = 0.01F;
    float farPlane = 1000.0F; ///< 100 times the scene distance
    bool perspectiveOn = true;
    double fieldOfView = 40.0;
    double orthoZoom = 1.0; ///< the field of view as a scale of the parallel projection
};
