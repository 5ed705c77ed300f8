// Operations on the camera alone, and the control's camera commands.
#include "tests/control/model/operations.h"

#include <cmath>

namespace karv_model
{
namespace
{

struct View {
    const char* name;
    void (KARVGLCamera::*of_camera)();
    void (KARVOpenGLControl::*of_control)();
    float about_z;
    float about_x;
};

constexpr View kViews[] = {
    {"Front", &KARVGLCamera::SetViewFront, &KARVOpenGLControl::CameraViewFront, 0.0F, 0.0F},
    {"Back", &KARVGLCamera::SetViewBack, &KARVOpenGLControl::CameraViewBack, 180.0F, 0.0F},
    {"Left", &KARVGLCamera::SetViewLeft, &KARVOpenGLControl::CameraViewLeft, -90.0F, 0.0F},
    {"Right", &KARVGLCamera::SetViewRight, &KARVOpenGLControl::CameraViewRight, 90.0F, 0.0F},
    {"Top", &KARVGLCamera::SetViewTop, &KARVOpenGLControl::CameraViewTop, 0.0F, 90.0F},
    {"Bottom", &KARVGLCamera::SetViewBottom, &KARVOpenGLControl::CameraViewBottom, 0.0F, -90.0F},
    {"SE", &KARVGLCamera::SetViewSE, &KARVOpenGLControl::CameraViewSE, 45.0F, 35.264F},
    {"SW", &KARVGLCamera::SetViewSW, &KARVOpenGLControl::CameraViewSW, 315.0F, 35.264F},
    {"NE", &KARVGLCamera::SetViewNE, &KARVOpenGLControl::CameraViewNE, 135.0F, 35.264F},
    {"NW", &KARVGLCamera::SetViewNW, &KARVOpenGLControl::CameraViewNW, 225.0F, 35.264F}};

void ShowView(ModelControl& model, const View& view)
{
    if (view.about_z == 0.0F && view.about_x == 0.0F)
        model.camera.SetViewFront(model.gl);
    else
        model.camera.SetViewByTurns(model.gl, view.about_z, view.about_x);
}

Operation DrawCameraView(Random& random)
{
    const View view = random.Of(kViews);
    return MakeOperation(
        std::string("camera.SetView") + view.name + "()",
        [=](Bench& bench) { (bench.control.camera.*view.of_camera)(); },
        [=](ModelControl& model) { ShowView(model, view); });
}

Operation DrawControlView(Random& random)
{
    const View view = random.Of(kViews);
    return MakeOperation(
        std::string("CameraView") + view.name + "()",
        [=](Bench& bench) { (bench.control.*view.of_control)(); },
        [=](ModelControl& model) { ShowView(model, view); });
}

WideTriple DrawAxis(Random& random)
{
    constexpr WideTriple kAxes[] = {{1, 0, 0},
                                    {0, 1, 0},
                                    {0, 0, 1},
                                    {0, 0, -1},
                                    {0, 0, 0},
                                    {0, 0, 1.00000000005},
                                    {0, 0, 1.0000000002},
                                    {1.00000000005, 0, 0}};
    return random.Chance(85) ? random.Of(kAxes) : random.Point();
}

float DrawAngle(Random& random)
{
    constexpr float kAngles[] = {90.0F,  -90.0F,   89.0F,     -89.0F,    88.0F,    -88.0F,   89.5F,   -89.5F,
                                 0.0F,   -0.0F,    1.0F,      -1.0F,     0.5F,     178.0F,   -178.0F, 1e-10F,
                                 1e-11F, 9.9e-11F, 180.0F,    270.0F,    360.0F,   1.1e-10F, 89.999F, 90.001F,
                                 45.0F,  35.264F,  89.99999F, 90.00001F, -35.264F, -54.736F, 2e-10F,  -44.0F};
    if (random.Chance(60))
        return random.Of(kAngles);
    return random.Chance(70) ? static_cast<float>(random.Uniform(-100.0, 100.0)) : random.Single();
}

Operation DrawRotate(Random& random)
{
    const float angle = DrawAngle(random);
    const WideTriple axis = DrawAxis(random);
    return MakeOperation(
        CallText("camera.RotateCamera", {angle, axis.x, axis.y, axis.z}),
        [=](Bench& bench) { bench.control.camera.RotateCamera(angle, ToVector(axis)); },
        [=](ModelControl& model) { model.camera.RotateCamera(angle, ToVector(axis)); });
}

/// A tilt to within a tenth of a degree of its limit, which from the front view is 89 degrees away, up or
/// down.
Operation DrawTiltToLimit(Random& random)
{
    const float steps[] = {89.0F, std::nextafter(89.0F, 90.0F), std::nextafter(89.0F, 88.0F),
                           static_cast<float>(random.Uniform(88.9, 89.1)),
                           static_cast<float>(random.Uniform(88.9999, 89.0001))};
    const float orbit = random.Chance(50) ? static_cast<float>(random.Uniform(-180.0, 180.0)) : 0.0F;
    const float tilt = random.Of(steps) * (random.Chance(50) ? 1.0F : -1.0F);
    return MakeOperation(
        CallText("front view, orbit and tilt by", {orbit, tilt}),
        [=](Bench& bench) {
            KARVGLCamera& camera = bench.control.camera;
            camera.SetViewFront();
            camera.RotateCamera(orbit, AcGeVector3d::kZAxis);
            camera.RotateCamera(tilt, AcGeVector3d::kXAxis);
        },
        [=](ModelControl& model) {
            model.camera.SetViewFront(model.gl);
            model.camera.RotateCamera(orbit, AcGeVector3d::kZAxis);
            model.camera.RotateCamera(tilt, AcGeVector3d::kXAxis);
        });
}

Operation DrawPan(Random& random)
{
    const float amount = random.Single();
    const WideTriple axis = DrawAxis(random);
    return MakeOperation(
        CallText("camera.PanCamera", {amount, axis.x, axis.y, axis.z}),
        [=](Bench& bench) { bench.control.camera.PanCamera(amount, ToVector(axis)); },
        [=](ModelControl& model) { model.camera.PanCamera(amount, ToVector(axis)); });
}

Operation DrawDolly(Random& random)
{
    const float amount = random.Single();
    return MakeOperation(
        CallText("camera.ZoomCamera", {amount}),
        [=](Bench& bench) { bench.control.camera.ZoomCamera(amount); },
        [=](ModelControl& model) { model.camera.ZoomCamera(amount); });
}

float DrawZoom(Random& random)
{
    const float zooms[] = {0.01F,
                           std::nextafter(0.01F, 0.0F),
                           std::nextafter(0.01F, 1.0F),
                           9.0F,
                           std::nextafter(9.0F, 10.0F),
                           150.0F,
                           std::nextafter(9.0F, 0.0F),
                           std::nextafter(150.0F, 0.0F),
                           40.0F,
                           1.0F,
                           200.0F,
                           12.0F,
                           0.0F,
                           -1.0F,
                           0.1F};
    return random.Chance(70) ? random.Of(zooms) : random.Single();
}

Operation DrawZoomAt(Random& random)
{
    const float zoom = DrawZoom(random);
    const float fov = DrawZoom(random);
    return MakeOperation(
        CallText("camera.ZoomAt", {zoom, fov}),
        [=](Bench& bench) {
            float new_zoom = zoom;
            float new_fov = fov;
            bench.control.camera.ZoomAt(new_zoom, new_fov);
            return Results{new_zoom, new_fov};
        },
        [=](ModelControl& model) {
            float new_zoom = zoom;
            float new_fov = fov;
            model.camera.ZoomAt(model.gl, new_zoom, new_fov);
            return Results{new_zoom, new_fov};
        });
}

Operation DrawRefresh(Random& random)
{
    const double fov = random.Number();
    // The first exceeds the range of floats unless it is halved.
    constexpr double kDistances[] = {5e38, 0.0, -1.0, 1e-46};
    const double distance = random.Chance(15) ? random.Of(kDistances) : random.Number();
    const float aspect = random.Single();
    return MakeOperation(
        CallText("camera.RefreshCameraView", {fov, distance, aspect}),
        [=](Bench& bench) { bench.control.camera.RefreshCameraView(fov, distance, aspect); },
        [=](ModelControl& model) { model.camera.RefreshCameraView(model.gl, fov, distance, aspect); });
}

Operation DrawSetPosition(Random& random)
{
    const WideTriple point = random.Point();
    return MakeOperation(
        CallText("camera.SetPosition", {point.x, point.y, point.z}),
        [=](Bench& bench) { bench.control.camera.SetPosition(ToPoint(point)); },
        [=](ModelControl& model) { model.camera.position = ToPoint(point); });
}

Operation DrawSetTarget(Random& random)
{
    const WideTriple point = random.Point();
    return MakeOperation(
        CallText("camera.SetTarget", {point.x, point.y, point.z}),
        [=](Bench& bench) { bench.control.camera.SetTarget(ToPoint(point)); },
        [=](ModelControl& model) { model.camera.target = ToPoint(point); });
}

Operation DrawSetUpVector(Random& random)
{
    const WideTriple up = random.Point();
    return MakeOperation(
        CallText("camera.SetUpVector", {up.x, up.y, up.z}),
        [=](Bench& bench) { bench.control.camera.SetUpVector(ToVector(up)); },
        [=](ModelControl& model) { model.camera.up_vector = ToVector(up); });
}

Operation DrawSetFarPlane(Random& random)
{
    const double distance = random.Number();
    return MakeOperation(
        CallText("camera.SetFarPlaneDistance", {distance}),
        [=](Bench& bench) { bench.control.camera.SetFarPlaneDistance(distance); },
        [=](ModelControl& model) { model.camera.SetFarPlaneDistance(distance); });
}

Operation DrawCameraSetCamera(Random& random)
{
    const WideTriple eye = random.Point();
    const WideTriple at = random.Chance(15) ? eye : random.Point();
    const WideTriple up = random.Point();
    return MakeOperation(
        CallText("camera.SetCamera", {eye.x, eye.y, eye.z, at.x, at.y, at.z, up.x, up.y, up.z}),
        [=](Bench& bench) { bench.control.camera.SetCamera(ToPoint(eye), ToPoint(at), ToVector(up)); },
        [=](ModelControl& model) { model.camera.SetCamera(ToPoint(eye), ToPoint(at), ToVector(up)); });
}

Operation DrawResetAngle(Random&)
{
    return MakeOperation(
        "camera.ResetAngle()", [](Bench& bench) { bench.control.camera.ResetAngle(); },
        [](ModelControl& model) { model.camera.ResetAngle(); });
}

Operation DrawUpdateCamera(Random&)
{
    return MakeOperation(
        "camera.UpdateCamera()", [](Bench& bench) { bench.control.camera.UpdateCamera(); },
        [](ModelControl& model) { model.camera.UpdateCamera(model.gl); });
}

Operation DrawCameraPerspective(Random& random)
{
    const bool on = random.Chance(50);
    return MakeOperation(
        CallText("camera.SetPerspectiveOn", {on ? 1.0 : 0.0}),
        [=](Bench& bench) { bench.control.camera.SetPerspectiveOn(on); },
        [=](ModelControl& model) { model.camera.SetPerspectiveOn(model.gl, on); });
}

Operation DrawCameraCopy(Random&)
{
    return MakeOperation(
        "camera = copy of camera",
        [](Bench& bench) {
            const KARVGLCamera copy(bench.control.camera);
            KARVGLCamera assigned;
            assigned = copy;
            bench.control.camera = assigned;
        },
        [](ModelControl&) {});
}

Operation DrawSetCamera(Random& random)
{
    const WideTriple eye = random.Point();
    const WideTriple at = random.Chance(15) ? eye : random.Point();
    const WideTriple up = random.Point();
    return MakeOperation(
        CallText("SetCamera", {eye.x, eye.y, eye.z, at.x, at.y, at.z, up.x, up.y, up.z}),
        [=](Bench& bench) { bench.control.SetCamera(ToPoint(eye), ToPoint(at), ToVector(up)); },
        [=](ModelControl& model) { model.SetCamera(ToPoint(eye), ToPoint(at), ToVector(up)); });
}

Operation DrawSetCameraData(Random& random)
{
    const WideTriple eye = random.Point();
    const WideTriple at = random.Point();
    const WideTriple up = random.Point();
    return MakeOperation(
        CallText("SetCameraData", {eye.x, eye.y, eye.z, at.x, at.y, at.z, up.x, up.y, up.z}),
        [=](Bench& bench) { bench.control.SetCameraData(ToPoint(eye), ToPoint(at), ToVector(up)); },
        [=](ModelControl& model) { model.SetCameraData(ToPoint(eye), ToPoint(at), ToVector(up)); });
}

Operation DrawGetCameraData(Random&)
{
    return MakeOperation(
        "GetCameraData()",
        [](Bench& bench) {
            AcGePoint3d eye;
            AcGePoint3d at;
            AcGeVector3d up;
            bench.control.GetCameraData(eye, at, up);
            return Results{eye.x, eye.y, eye.z, at.x, at.y, at.z, up.x, up.y, up.z};
        },
        [](ModelControl& model) {
            const ModelCamera& camera = model.camera;
            return Results{camera.position.x,  camera.position.y,  camera.position.z,
                           camera.target.x,    camera.target.y,    camera.target.z,
                           camera.up_vector.x, camera.up_vector.y, camera.up_vector.z};
        });
}

Operation DrawGetCameraAxes(Random&)
{
    return MakeOperation(
        "GetCameraAxes()",
        [](Bench& bench) {
            AcGeVector3d x;
            AcGeVector3d y;
            AcGeVector3d z;
            bench.control.GetCameraAxes(x, y, z);
            return Results{x.x, x.y, x.z, y.x, y.y, y.z, z.x, z.y, z.z};
        },
        [](ModelControl& model) {
            const ModelCamera& camera = model.camera;
            return Results{camera.x_axis.x, camera.x_axis.y, camera.x_axis.z,
                           camera.y_axis.x, camera.y_axis.y, camera.y_axis.z,
                           camera.z_axis.x, camera.z_axis.y, camera.z_axis.z};
        });
}

Operation DrawSetToPerspective(Random& random)
{
    const bool on = random.Chance(50);
    return MakeOperation(
        CallText("SetToPerspective", {on ? 1.0 : 0.0}),
        [=](Bench& bench) { bench.control.SetToPerspective(on); },
        [=](ModelControl& model) { model.camera.SetPerspectiveOn(model.gl, on); });
}

Operation DrawResetZoom(Random&)
{
    return MakeOperation(
        "ResetCameraZoom()", [](Bench& bench) { bench.control.ResetCameraZoom(); },
        [](ModelControl& model) {
            model.zoom_factor = 1.0F;
            model.field_of_view = 40.0F;
        });
}

} // namespace

const std::vector<Kind>& CameraKinds()
{
    static const std::vector<Kind> kinds = {{30, DrawRotate},
                                            {5, DrawTiltToLimit},
                                            {12, DrawPan},
                                            {12, DrawDolly},
                                            {10, DrawZoomAt},
                                            {5, DrawRefresh},
                                            {4, DrawSetPosition},
                                            {4, DrawSetTarget},
                                            {2, DrawSetUpVector},
                                            {5, DrawSetFarPlane},
                                            {4, DrawCameraSetCamera},
                                            {2, DrawResetAngle},
                                            {2, DrawUpdateCamera},
                                            {5, DrawCameraPerspective},
                                            {2, DrawCameraCopy},
                                            {15, DrawCameraView},
                                            {15, DrawControlView},
                                            {3, DrawSetCamera},
                                            {3, DrawSetCameraData},
                                            {3, DrawGetCameraData},
                                            {3, DrawGetCameraAxes},
                                            {10, DrawSetToPerspective},
                                            {6, DrawResetZoom}};
    return kinds;
}

} // namespace karv_model
