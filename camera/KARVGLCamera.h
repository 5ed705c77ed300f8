// The camera of a viewport: where the viewer stands, what it looks at, its own frame and its projection. It
// knows neither the window nor the geometry; it writes its matrices into whatever GL context is current, and
// owns none.
#pragma once

#include "platform/host/ge/geometry.h"
#include "platform/winsys/export.h"

/// A camera, a plain value.
///
/// Lengths are in model units, angles in degrees. No argument is checked (a zero aspect gives infinite
/// extents) and no operation throws: a fault is reported through the tools library and leaves what was
/// written by then. Operations that load matrices need the viewport's GL context to be current and leave the
/// matrix mode at GL_MODELVIEW; the others touch no GL state. One thread: the viewport's.
class KARV_MODULE_API KARVGLCamera
{
  public:
    /// Eye and target at the origin, world axes, perspective of 40 degrees, aspect 1, near 0.01, far 1000.
    KARVGLCamera();
    KARVGLCamera(const KARVGLCamera& source);
    KARVGLCamera& operator=(const KARVGLCamera& source);
    ~KARVGLCamera();

    /// Sets the eye; the frame is not recomputed.
    void SetPosition(AcGePoint3d point);
    /// Sets the point looked at, about which rotations turn; the frame is not recomputed.
    void SetTarget(AcGePoint3d point);
    /// Sets the up vector that `GetCamera` reports; the camera's own frame is not touched.
    void SetUpVector(AcGeVector3d vector);
    /// Sets the far distance to 100 times the scene distance `d`; the next `ZoomAt` uses it.
    void SetFarPlaneDistance(double d);
    /// Sets eye, target and up vector. The frame is not recomputed, so the next `UpdateCamera` still looks
    /// along the old up axis: callers that drive the camera themselves depend on it.
    void SetCamera(AcGePoint3d position_in, AcGePoint3d target_in, AcGeVector3d up);
    /// Copies out eye, target and the up vector as set, which is not the frame's up axis.
    void GetCamera(AcGePoint3d& position_out, AcGePoint3d& target_out, AcGeVector3d& up);
    /// The camera's right, forward and up axes.
    void GetLocalAxes(AcGeVector3d& x, AcGeVector3d& y, AcGeVector3d& z);
    /// Puts the frame back to the world axes; eye and target stay.
    void ResetAngle();

    /// Loads the look-at matrix of eye, target and the frame's up axis.
    void UpdateCamera();
    /// Loads the projection for a viewport of this aspect (width / height) and a scene of this size; `fov` is
    /// the vertical field of view, not limited. The near distance of a perspective is 0.1, the far distance
    /// 100 times the scene's size. Parallel projections show the scene's size across, without the zoom. Field
    /// of view, aspect and far distance are kept for the operations below.
    void RefreshCameraView(double fov, double distance, float aspect_in);
    /// Switches between perspective (true) and parallel projection and loads the view matrix too; leaving
    /// perspective saves its matrix on the projection stack and entering it pops one, also when it was never
    /// left. Entering it loads a projection with a negative near distance, which the next `ZoomAt` or
    /// `RefreshCameraView` replaces. Switching to parallel projection twice does nothing the second time.
    void SetPerspectiveOn(bool on);
    /// Loads the projection at the zoom of the active kind, which is first limited in place: `fov` to
    /// 0.01..150 degrees in perspective, `orthoZoomFactor` to 0.01..9 in parallel projection. The other value
    /// is not touched, and NaN passes.
    void ZoomAt(float& orthoZoomFactor, float& fov);

    // Standard views: the eye goes to one scene distance from the target, on the side that the name says
    // (Front is -Y, Right is +X, Top is +Z; SE is +X, -Y and above), the frame turns with it, the up vector
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

    // Motion. Directions compare within `AcGeContext::gTol`. No matrix is loaded: follow it with
    // `UpdateCamera`.

    /// Turns eye and frame about the target: about world Z for that axis (an orbit), and for every other axis
    /// a tilt, which lifts the eye for positive angles. A tilt that would bring the line of sight closer than
    /// one degree to the vertical is dropped whole, unless it is of exactly 90 degrees; seen from straight
    /// above or below, it is made about world X. Angles of no more than 1e-10 degrees are dropped.
    void RotateCamera(float angle_degrees, AcGeVector3d axis);
    /// Moves eye and target together: for world X to the right of the line of sight (world X itself where
    /// that is vertical), for every other axis up the screen.
    void PanCamera(float amount, AcGeVector3d axis);
    /// Moves the eye along the frame's forward axis, back for negative amounts. A step after which the target
    /// no longer lies in the same direction is dropped, so also one that would reach or pass it.
    void ZoomCamera(float amount);

  private:
    AcGePoint3d position;
    AcGePoint3d target;
    AcGeVector3d xAxis;    ///< right
    AcGeVector3d yAxis;    ///< forward
    AcGeVector3d zAxis;    ///< up, as the look-at takes it
    AcGeVector3d upVector; ///< up, as callers set and read it
    double angle = 0.0;    ///< written by `ResetAngle`, read by nothing
    float aspect = 1.0F;   ///< width / height
    float nearPlane = 0.01F;
    float farPlane = 1000.0F; ///< 100 times the scene distance
    bool perspectiveOn = true;
    double fieldOfView = 40.0;
    double orthoZoom = 1.0; ///< the field of view as a parallel scale, see `SetPerspectiveOn`
};
