// An independent model of the camera, compared with the real one: every step in the order and precision that
// the rules fix. Like the real camera it uses the host's geometry library; it uses nothing of the real
// camera.
#pragma once

#include "platform/host/ge/geometry.h"
#include "tests/control/model/model_gl.h"

namespace karv_model
{

struct ModelCamera {
    AcGePoint3d position{0.0, 0.0, 0.0};
    AcGePoint3d target{0.0, 0.0, 0.0};
    AcGeVector3d x_axis{1.0, 0.0, 0.0};
    AcGeVector3d y_axis{0.0, 1.0, 0.0};
    AcGeVector3d z_axis{0.0, 0.0, 1.0};
    AcGeVector3d up_vector{0.0, 0.0, 1.0};
    float aspect = 1.0F;
    float near_plane = 0.01F;
    float far_plane = 1000.0F;
    bool perspective_on = true;
    double field_of_view = 40.0;
    double ortho_zoom = 1.0;

    void SetFarPlaneDistance(double distance);
    void SetCamera(const AcGePoint3d& eye, const AcGePoint3d& at, const AcGeVector3d& up);
    void ResetAngle();

    void UpdateCamera(GlStream& gl) const;
    void RefreshCameraView(GlStream& gl, double fov, double distance, float new_aspect);
    void SetPerspectiveOn(GlStream& gl, bool on);
    void ZoomAt(GlStream& gl, float& zoom_factor, float& fov) const;

    void SetViewFront(GlStream& gl);
    /// The other standard views: one or two turns from the front view; `about_x` of 0 is no second turn.
    void SetViewByTurns(GlStream& gl, float about_z, float about_x);

    void RotateCamera(float angle, const AcGeVector3d& axis);
    void PanCamera(float amount, const AcGeVector3d& axis);
    void ZoomCamera(float amount);

  private:
    [[nodiscard]] bool AllowsTilt(double angle) const;
    void Orthographic(GlStream& gl, float half_width, float half_height) const;
};

} // namespace karv_model
