#include "tests/control/model/model_control.h"

#include "platform/winsys/opengl.h"
#include "platform/winsys/winsys.h"

#include <cmath>

namespace karv_model
{
namespace
{

constexpr int kCategories = 11;
constexpr double kPerByte = 0.00392156862745098;

float ColorChannel(int value)
{
    const unsigned byte = static_cast<unsigned>(value) & 255U;
    return static_cast<float>(static_cast<double>(byte) * kPerByte);
}

AcGePoint3d Widened(const Triple& point)
{
    return {static_cast<double>(point.x), static_cast<double>(point.y), static_cast<double>(point.z)};
}

} // namespace

ModelControl::ModelControl(unsigned host_red, unsigned host_green, unsigned host_blue)
    : background{ColorChannel(static_cast<int>(host_red)), ColorChannel(static_cast<int>(host_green)),
                 ColorChannel(static_cast<int>(host_blue))}
{
    for (int category = 0; category < kCategories; ++category)
        disabled_types[category] = false;
}

void ModelControl::CreateCtrl(const Rect& rect, bool transparent)
{
    has_window = true;
    device_context = outside.device_context;
    rendering_context = outside.rendering_context;
    pixel_format = outside.pixel_format;
    FixedState();
    OnDraw();
    OnSize(SIZE_RESTORED, rect.right - rect.left, rect.bottom - rect.top);
    create_rect = rect;
    initial_rect = rect;
    if (transparent) {
        Expect(gl, "glDisable", {GL_DEPTH_TEST});
        Expect(gl, "glDisable", {GL_CULL_FACE});
        Expect(gl, "glEnable", {GL_BLEND});
        Expect(gl, "glBlendFunc", {GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA});
    }
}

void ModelControl::FixedState()
{
    Expect(gl, "glClearColor", {background.x, background.y, background.z, 1.0});
    Expect(gl, "glClearDepth", {1.0});
    Expect(gl, "glEnable", {GL_CULL_FACE});
    Expect(gl, "glFrontFace", {GL_CW});
    Expect(gl, "glCullFace", {GL_BACK});
    Expect(gl, "glEnable", {GL_DEPTH_TEST});
    Expect(gl, "glDepthFunc", {GL_LEQUAL});
    constexpr float kDim = 0.01F;
    Expect(gl, "glLightfv", {GL_LIGHT0, GL_AMBIENT, kDim, kDim, kDim, 1.0});
    Expect(gl, "glLightfv", {GL_LIGHT0, GL_DIFFUSE, 1.0, 1.0, 1.0, 1.0});
    Expect(gl, "glLightfv", {GL_LIGHT0, GL_SPECULAR, 1.0, 1.0, 1.0, 1.0});
    Expect(gl, "glMaterialfv", {GL_FRONT, GL_AMBIENT, 1.0, 1.0, 1.0, 1.0});
    Expect(gl, "glMaterialfv", {GL_FRONT, GL_DIFFUSE, 1.0, 1.0, 1.0, 1.0});
    Expect(gl, "glMaterialfv", {GL_FRONT, GL_SPECULAR, 0.5, 0.5, 0.5, 0.5});
    Expect(gl, "glMaterialfv", {GL_FRONT, GL_SHININESS, 5.0});
    Expect(gl, "glEnable", {GL_LIGHT0});
    Expect(gl, "glEnable", {GL_LIGHTING});
    Expect(gl, "glEnable", {GL_COLOR_MATERIAL});
    Expect(gl, "glColorMaterial", {GL_FRONT_AND_BACK, GL_AMBIENT_AND_DIFFUSE});
    Expect(gl, "glEnable", {GL_NORMALIZE});
    Expect(gl, "glShadeModel", {GL_SMOOTH});
    Expect(gl, "glHint", {GL_PERSPECTIVE_CORRECTION_HINT, GL_NICEST});
    Expect(gl, "glEnable", {GL_MULTISAMPLE});
    Expect(gl, "glPolygonMode", {GL_FRONT_AND_BACK, GL_FILL});
}

void ModelControl::OnDraw()
{
    Expect(gl, "glLoadIdentity");
    camera.RotateCamera(pending_rotate_x, AcGeVector3d::kXAxis);
    camera.RotateCamera(pending_rotate_z, AcGeVector3d::kZAxis);
    if (invert_pan_x)
        pending_pan_x = -pending_pan_x;
    camera.PanCamera(pending_pan_x, AcGeVector3d::kXAxis);
    camera.PanCamera(pending_pan_z, AcGeVector3d::kZAxis);
    camera.ZoomAt(gl, zoom_factor, field_of_view);
    pending_pan_z = 0.0F;
    pending_pan_x = 0.0F;
    pending_rotate_x = 0.0F;
    pending_rotate_z = 0.0F;
    camera.UpdateCamera(gl);
    if (has_window)
        window_calls.emplace_back("SetFocus(3DView)");
}

void ModelControl::StartTimer()
{
    window_calls.emplace_back("SetTimer(3DView, 1, 1, null)");
    timer_id = 1.0;
}

void ModelControl::ForceRenderStart()
{
    StartTimer();
    OnDraw();
    render_started = true;
}

void ModelControl::OnPaint()
{
    defaulted_messages.push_back(WM_PAINT);
    if (render_started) {
        Meet("paint after the start");
        return;
    }
    StartTimer();
    render_started = true;
}

void ModelControl::OnSize(unsigned type, int cx, int cy)
{
    if (cx <= 0 || cy <= 0 || type == 1) {
        Meet("size without effect");
        return;
    }
    Expect(gl, "glViewport", {0.0, 0.0, static_cast<double>(cx), static_cast<double>(cy)});
    aspect_ratio = static_cast<float>(cx) / static_cast<float>(cy);
    camera.RefreshCameraView(gl, static_cast<double>(field_of_view), static_cast<double>(scene_size),
                             static_cast<float>(cx) / static_cast<float>(cy));
    OnDraw();
    if (static_cast<double>(pan_scale) < -1e-20) {
        Meet("first size");
        pan_scale = 1.0F;
    } else {
        Meet("later size");
        pan_scale = static_cast<float>(initial_rect.right - initial_rect.left) / static_cast<float>(cx);
    }
}

void ModelControl::OnTimer(std::int64_t t0, std::int64_t t1)
{
    Expect(gl, "clock");
    Expect(gl, "glClear", {GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT});
    DrawFrame();
    window_calls.insert(window_calls.end(), {"clock", "SwapBuffers(dc of 3DView)", "clock"});
    Expect(gl, "clock");
    const double dt = static_cast<double>(t1 - t0) / 1000.0;
    if (dt * dt <= 1e-20)
        frames_per_second = 1000;
    else
        frames_per_second = static_cast<int>(1.0 / dt);
}

void ModelControl::Throttle()
{
    if (frames_per_second < 5 && multisample_on && user_control_enabled) {
        Meet("throttle down");
        Expect(gl, "glDisable", {GL_MULTISAMPLE});
        multisample_on = false;
        Expect(gl, "glDisable", {GL_NORMALIZE});
    }
    if (frames_per_second >= 10 && !multisample_on && user_control_enabled) {
        Meet("throttle up");
        Expect(gl, "glEnable", {GL_MULTISAMPLE});
        multisample_on = true;
        Expect(gl, "glEnable", {GL_NORMALIZE});
    }
    if (frames_per_second >= 5 && frames_per_second < 10)
        Meet("throttle between");
    if (frames_per_second < 5 && !user_control_enabled)
        Meet("throttle frozen");
}

void ModelControl::DrawFrame()
{
    Throttle();
    Expect(gl, "glGetDoublev", {GL_MODELVIEW_MATRIX});
    Expect(gl, "glGetDoublev", {GL_PROJECTION_MATRIX});
    Expect(gl, "glGetIntegerv", {GL_VIEWPORT});
    for (const ModelEntity& entity : entities) {
        if (!disabled_types.contains(entity.type))
            Meet("category met for the first time");
        if (disabled_types[entity.type]) {
            Meet("category hidden");
            continue;
        }
        if (IsCulled(entity)) {
            Meet("entity culled");
            continue;
        }
        if (render_mode == 0)
            entity.DrawLines(gl);
        else
            entity.DrawQuads(gl);
    }
}

bool ModelControl::IsLeftOfAndBelow(const Triple& corner)
{
    // A corner that the projection refuses (it lies in the eye's plane) keeps the initial values.
    double x = 0.0;
    double y = 0.0;
    double z = 0.0;
    Expect(gl, "gluProject", {corner.x, corner.y, corner.z});
    if (gluProject(corner.x, corner.y, corner.z, outside.model_view, outside.projection, outside.viewport, &x,
                   &y, &z) != GL_TRUE)
        Meet("corner without projection");
    return x < -1e-20 && y < -1e-20;
}

bool ModelControl::IsCulled(const ModelEntity& entity)
{
    const bool low_outside = IsLeftOfAndBelow(entity.low);
    const bool high_outside = IsLeftOfAndBelow(entity.high);
    if (low_outside != high_outside)
        Meet("one corner left of and below the viewport");
    return low_outside && high_outside;
}

void ModelControl::SetBgColor(int r, int g, int b)
{
    background = {ColorChannel(r), ColorChannel(g), ColorChannel(b)};
    Expect(gl, "glClearColor", {background.x, background.y, background.z, 1.0});
    Expect(gl, "glClearDepth", {1.0});
}

void ModelControl::SetLightsOff(bool off)
{
    const char* const call = off ? "glDisable" : "glEnable";
    Expect(gl, call, {GL_LIGHT0});
    Expect(gl, call, {GL_LIGHTING});
}

void ModelControl::DrawDebugCubeAt(const Triple& position, float size)
{
    const float h = size * 0.5F;
    const float a = -h;
    const float b = h;
    const float angle = static_cast<float>(debug_cube_angle);
    Expect(gl, "glPushMatrix");
    Expect(gl, "glTranslatef", {position.x, position.y, position.z});
    Expect(gl, "glRotatef", {angle, 1.0, 0.0, 0.0});
    Expect(gl, "glRotatef", {angle, 0.0, 1.0, 0.0});
    Expect(gl, "glRotatef", {angle, 0.0, 0.0, 1.0});
    Expect(gl, "glColor3f", {0.0, 0.0, 1.0});
    Expect(gl, "glBegin", {GL_QUADS});
    const auto side = [&](const Triple& normal, const Triple& p, const Triple& q, const Triple& r,
                          const Triple& s) {
        Expect(gl, "glNormal3f", {normal.x, normal.y, normal.z});
        for (const Triple& corner : {p, q, r, s})
            Expect(gl, "glVertex3f", {corner.x, corner.y, corner.z});
    };
    side({0, 0, h}, {a, a, b}, {b, a, b}, {b, b, b}, {a, b, b});
    side({0, 0, -h}, {a, a, a}, {a, b, a}, {b, b, a}, {b, a, a});
    side({0, h, 0}, {a, b, a}, {a, b, b}, {b, b, b}, {b, b, a});
    side({0, -h, 0}, {a, a, a}, {b, a, a}, {b, a, b}, {a, a, b});
    side({h, 0, 0}, {b, a, a}, {b, b, a}, {b, b, b}, {b, a, b});
    side({-h, 0, 0}, {a, a, a}, {a, a, b}, {a, b, b}, {a, b, a});
    Expect(gl, "glEnd");
    Expect(gl, "glPopMatrix");
    debug_cube_angle += 1;
}

void ModelControl::AddEntityToCache(const ModelEntity& entity)
{
    if (compute_extents_on_append)
        DetectExtents(entity);
    entities.push_back(entity);
    face_count += static_cast<int>(entity.faces.size());
}

void ModelControl::DetectExtents(const ModelEntity& entity)
{
    if (!extents_seeded) {
        Meet("extents seeded");
        extents_max = entity.high;
        extents_min = entity.high;
        extents_seeded = true;
    }
    GrowBox(entity.low, extents_min, extents_max);
    GrowBox(entity.high, extents_min, extents_max);
    ComputeCentroid();
}

void ModelControl::ComputeCentroid()
{
    centroid.x = (extents_max.x + extents_min.x) * 0.5F;
    centroid.y = (extents_max.y + extents_min.y) * 0.5F;
    centroid.z = (extents_max.z + extents_min.z) * 0.5F;
    const double d = Widened(extents_max).distanceTo(Widened(extents_min));
    const float rounded = static_cast<float>(d);
    scene_size = static_cast<float>(static_cast<double>(rounded) * 1.2);
    if (camera_set_by_caller)
        Meet("target kept");
    else
        camera.target = Widened(centroid);
    camera.SetFarPlaneDistance(static_cast<double>(scene_size));
}

void ModelControl::OverrideExtents(const WideTriple& low, const WideTriple& high)
{
    extents_min = Narrowed(low);
    extents_max = Narrowed(high);
    ComputeCentroid();
}

void ModelControl::OnMouseMove(unsigned flags, int x, int y, bool is_message)
{
    if (!user_control_enabled) {
        Meet("mouse move after the end of navigation");
        return;
    }
    const float new_x = static_cast<float>(x);
    const float new_y = static_cast<float>(y);
    const int dx = static_cast<int>(new_x - last_mouse_x);
    const int dy = static_cast<int>(new_y - last_mouse_y);
    last_mouse_x = new_x;
    last_mouse_y = new_y;
    if ((flags & 0x0001U) != 0U) {
        if (mouse_rotates)
            MouseRotate(dx, dy);
        else if (mouse_pans)
            MousePan(dx, dy);
        else if (mouse_zooms)
            MouseZoom(dy);
    } else if ((flags & 0x0010U) != 0U) {
        MousePan(dx, dy);
    } else if ((flags & 0x0002U) != 0U) {
        MouseZoom(dy);
    }
    OnDraw();
    if (is_message)
        defaulted_messages.push_back(WM_MOUSEMOVE);
}

void ModelControl::OnMouseWheel(int delta, bool is_message)
{
    MouseZoom(delta / -10);
    OnDraw();
    // The default handling passes the wheel to the parent, which passes it to its default handling too.
    if (is_message)
        defaulted_messages.insert(defaulted_messages.end(), {WM_MOUSEWHEEL, WM_MOUSEWHEEL});
}

void ModelControl::MouseRotate(int dx, int dy)
{
    pending_rotate_x = static_cast<float>(dy) * 0.5F;
    if (pending_rotate_x > 360.0F || pending_rotate_x < -360.0F) {
        Meet("tilt beyond a full turn");
        pending_rotate_x = 0.0F;
    }
    const float half = static_cast<float>(dx) * 0.5F;
    pending_rotate_z = static_cast<float>(static_cast<double>(half) * -1.0);
    if (pending_rotate_z > 360.0F || pending_rotate_z < -360.0F) {
        Meet("orbit beyond a full turn");
        pending_rotate_z = 0.0F;
    }
    if (std::fabs(pending_rotate_x) == 360.0F || std::fabs(pending_rotate_z) == 360.0F)
        Meet("exactly a full turn");
}

void ModelControl::MousePan(int dx, int dy)
{
    Meet("mouse pan");
    const float first = pan_scale * 0.01F;
    const float second = scene_size / 4.45F;
    const double k =
        static_cast<double>(first) * static_cast<double>(second) * static_cast<double>(zoom_factor);
    pending_pan_x = static_cast<float>(static_cast<double>(dx) * k);
    pending_pan_z = static_cast<float>(static_cast<double>(dy) * k);
}

void ModelControl::MouseZoom(int d)
{
    Meet("mouse zoom");
    const float f = static_cast<float>(d) * 0.01F + 1.0F;
    field_of_view = field_of_view * f;
    zoom_factor = zoom_factor * f;
}

void ModelControl::Restrict(bool to_rotate, bool to_pan, bool to_zoom)
{
    mouse_rotates = to_rotate;
    mouse_pans = to_pan;
    mouse_zooms = to_zoom;
}

void ModelControl::SetCamera(const AcGePoint3d& eye, const AcGePoint3d& at, const AcGeVector3d& up)
{
    camera.SetCamera(eye, at, up);
    zoom_factor = 0.01F;
    field_of_view = 0.1F;
    camera_set_by_caller = true;
}

void ModelControl::SetCameraData(const AcGePoint3d& eye, const AcGePoint3d& at, const AcGeVector3d& up)
{
    camera.SetCamera(eye, at, up);
    camera.UpdateCamera(gl);
    camera_set_by_caller = true;
}

} // namespace karv_model
