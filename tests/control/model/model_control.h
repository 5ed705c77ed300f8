// An independent model of the control, compared with the real one: frames and their throttle, culling,
// category switches, extents, navigation with the mouse, camera commands, and the GL calls of the creation.
// It uses nothing of the real control; values that it cannot compute (list names, matrices, handles) are
// passed in before each step.
#pragma once

#include "tests/control/model/model_camera.h"
#include "tests/control/model/model_entity.h"

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace karv_model
{

/// Values of one step that come from the driver and the window system.
struct Outside {
    ListNames lists;
    double model_view[16] = {};
    double projection[16] = {};
    int viewport[4] = {};
    int client_width = 0;
    int client_height = 0;
    /// After creation: the handles and the format that the window system gave.
    double device_context = 0.0;
    double rendering_context = 0.0;
    double pixel_format = 0.0;
};

struct Rect {
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;
};

struct ModelControl {
    explicit ModelControl(unsigned host_red, unsigned host_green, unsigned host_blue);

    /// The input and output of one step, emptied before the next.
    Outside outside;
    GlStream gl;
    std::vector<std::string> window_calls;
    std::vector<unsigned> defaulted_messages;
    int faults = 0;

    bool has_window = false;
    int face_count = 0;
    float last_mouse_x = 0.0F;
    float last_mouse_y = 0.0F;
    float pending_pan_x = 0.0F;
    float pending_pan_z = 0.0F;
    float field_of_view = 40.0F;
    float zoom_factor = 1.0F;
    float pending_rotate_x = 0.0F;
    float pending_rotate_z = 0.0F;
    float pan_scale = -1.0F;
    ModelCamera camera;
    bool extents_seeded = false;
    Triple extents_max;
    Triple extents_min;
    Triple centroid;
    float scene_size = 0.0F;
    bool camera_set_by_caller = false;
    bool mouse_rotates = true;
    bool mouse_pans = false;
    bool mouse_zooms = false;
    double metrics_factor = 1.0;
    bool compute_extents_on_append = true;
    int debug_cube_angle = 0;
    double device_context = 0.0;
    double rendering_context = 0.0;
    double pixel_format = 0.0;
    Rect create_rect;
    Rect initial_rect;
    bool render_started = false;
    Triple background;
    int frames_per_second = 1000;
    bool invert_pan_x = true;
    float aspect_ratio = 1.0F;
    std::int32_t render_mode = 1;
    bool user_control_enabled = true;
    bool multisample_on = true;
    double timer_id = 0.0;
    std::vector<ModelEntity> entities;
    std::map<std::int32_t, bool> disabled_types;

    void CreateCtrl(const Rect& rect, bool transparent);

    void OnDraw();
    void ForceRenderStart();
    void OnPaint();
    void OnSize(unsigned type, int cx, int cy);
    /// One frame that lasts from `t0` to `t1`, in ms.
    void OnTimer(std::int64_t t0, std::int64_t t1);
    void SetBgColor(int r, int g, int b);
    void SetLightsOff(bool off);
    void DrawDebugCubeAt(const Triple& position, float size);

    void AddEntityToCache(const ModelEntity& entity);
    void OverrideExtents(const WideTriple& low, const WideTriple& high);

    /// With `is_message` the call is a window message; otherwise the handler is called alone and there is no
    /// default handling.
    void OnMouseMove(unsigned flags, int x, int y, bool is_message);
    void OnMouseWheel(int delta, bool is_message);
    void MouseRotate(int dx, int dy);
    void MousePan(int dx, int dy);
    void MouseZoom(int d);
    void Restrict(bool to_rotate, bool to_pan, bool to_zoom);

    void SetCamera(const AcGePoint3d& eye, const AcGePoint3d& at, const AcGeVector3d& up);
    void SetCameraData(const AcGePoint3d& eye, const AcGePoint3d& at, const AcGeVector3d& up);

  private:
    void FixedState();
    void StartTimer();
    void Throttle();
    void DrawFrame();
    [[nodiscard]] bool IsCulled(const ModelEntity& entity);
    [[nodiscard]] bool IsLeftOfAndBelow(const Triple& corner);
    void DetectExtents(const ModelEntity& entity);
    void ComputeCentroid();
};

} // namespace karv_model
