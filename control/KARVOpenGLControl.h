// The viewport: a child window with an OpenGL context that host dialogs embed. It owns its camera and its
// cache of entities, draws them on a window timer, and keeps the box of the scene, from which the camera's
// target and far distance follow.
//
// What a host must know:
//  - Call `OnDraw(nullptr)` after every camera command, because frames do not load matrices.
//  - The near distance is fixed at 0.01 and coordinates are floats. Move the model into the positive octant
//    and scale it to a scene size of about 0.2.
//  - Colour and opacity are fixed when geometry is appended, transparent drawing when the control is created.
//    Clearing keeps the face total, the extents and the switches. To change one of these, make a new control
//    and append the geometry again.
//  - Line mode draws lines and the edges of solids. It draws nothing of client faces.
//  - With two controls, GL calls go to the context made current last, and destroying a control leaves no
//    context current. A host that uses both calls `wglMakeCurrent` itself.
#pragma once

#include "camera/KARVGLCamera.h"
#include "control/deletion_watch.h"
#include "geometry/KARVGraphicalEntity.h"
#include "module/export.h"
#include "platform/framework/geometry.h"
#include "platform/framework/window.h"
#include "platform/host/ge/geometry.h"

#include <cstdint>
#include <map>
#include <vector>

/// How entities are drawn. Every value except 0 draws faces.
enum KARVGLRenderMode : std::int32_t {
    KARVGLRenderModeLines = 0, ///< only lines and the edges of solids
    KARVGLRenderModeFaces = 1, ///< faces; the lines of entities without faces
};

/// The viewport control.
///
/// All operations run on the thread that owns the host's windows. Arguments are not checked. No operation
/// throws: a fault is reported through the tools library, changes made before it stay, and an operation with
/// a result returns 0. The control's GL context is made current once, when the window is created. Operations
/// that need the context need it to be still current.
class KARV_MODULE_API KARVOpenGLControl : public CWnd
{
  public:
    /// Creates no window and makes no GL call. The background takes the host's current background colour.
    KARVOpenGLControl();
    /// Deletes the context and destroys the window if they still exist. Afterwards no context is current, not
    /// even that of another control. The display lists of faces are freed with the context.
    ~KARVOpenGLControl() override;

    // Creation.

    /// Creates the child window in `parent` at `rect` (client pixels of the parent) and its GL context, which
    /// is current when this returns. `transparent` permanently turns depth test and culling off and blending
    /// on; entities are drawn in the order in which they were appended. `parent` is not owned. It must
    /// outlive the window or destroy it. If the window is refused, the control has none and later calls draw
    /// nothing.
    void CreateCtrl(CRect rect, CWnd* parent, bool transparent);

    // Frames and rendering.

    /// Applies the queued camera motion, loads projection and view matrix and takes the keyboard focus. It
    /// draws nothing. A zoom beyond the camera's limits is limited to them. `dc` is not used and may be null.
    /// Needs the control's context.
    void OnDraw(CDC* dc);
    /// Starts the frame timer without waiting for the first paint message and calls `OnDraw`. A second call
    /// sets the same timer again. Without a window no timer is started. Needs the control's context.
    void ForceRenderStart();
    /// Sets the background colour of the next frame and all later ones. Channels are 0 to 255; of other
    /// values the low 8 bits count. Needs the control's context.
    void SetBgColor(int r, int g, int b);
    /// Sets how the next frame and all later ones draw entities.
    void SetRenderMode(KARVGLRenderMode mode);
    /// Turns light 0 and lighting off or on from the next frame on. Only the context stores this. Drawing
    /// lines turns lighting on again while the light stays off. Needs the control's context.
    void SetLightsOff(bool off);
    /// Stores a factor. It has no effect.
    void SetMetricsFactor(double factor);

    // Geometry. Each append adds one entity, which is drawn after all earlier ones, from the next frame on.

    /// Appends a solid, which must not be null: its faces, and its physical edges for line mode. Only the low
    /// 8 bits of the colour index count. The opacity is 0 to 1. The solid is only read, except that planes
    /// are evaluated.
    void AppendGeometry(AModeler::Body* body, KARVGraphicalEntity::EntityType type, unsigned short color,
                        float alpha);
    /// Appends a line of the host's database in the line's colour. Any other kind, or null, appends an entity
    /// without geometry. The host entity is only read.
    void AppendGeometry(AcDbEntity* entity, KARVGraphicalEntity::EntityType type);
    /// Appends a copy of an entity.
    void AppendGeometry(KARVGraphicalEntity entity);
    /// Appends polygons. Only the low 8 bits of the colour index count. The opacity is 0 to 1. Needs the
    /// control's context.
    void AppendGeometry(std::vector<KARVGLFace> faces, KARVGraphicalEntity::EntityType type,
                        unsigned short color, float alpha);
    /// Reserves memory for `count` entities in total, so that no append up to that count moves entities. A
    /// count below the present capacity, or a negative one, has no effect.
    void AllocateMemory(int count);
    /// Removes all entities. The face total, the extents and the switches stay: geometry appended later
    /// extends the old scene. The argument is not used.
    void ClearGeometry(bool unused);
    /// Shows a category from the next frame on. Hiding and showing are not counted. All categories are shown
    /// at first.
    void EnableObject(KARVGraphicalEntity::EntityType type);
    /// Hides a category, any 32-bit value, from the next frame on. Its entities still count in totals and
    /// extents.
    void DisableObject(KARVGraphicalEntity::EntityType type);
    /// Returns the number of faces appended since construction, including those cleared.
    int GetFaceNumber();

    // Extents.

    /// Sets whether appends grow the scene's box. At first they do. The box does not change now: switching it
    /// on again does not add the entities that were appended while it was off.
    void ComputeExtents(bool compute);
    /// Replaces the scene's box. The corners are in model units, narrowed to float and not sorted. The far
    /// distance becomes 120 diagonals of the box, and the camera's target becomes its centre unless the host
    /// has placed the camera. The first append that computes extents discards an earlier override.
    void OverrideExtents(AcGePoint3d min_corner, AcGePoint3d max_corner);

    // Navigation. A drag turns by half a degree per pixel, or zooms by one per cent per pixel down. The
    // middle button always pans, the right button always zooms.

    /// The left button orbits (horizontal drag) and tilts (vertical drag). This is the initial state.
    void RestrictToRotate();
    /// The left button pans.
    void RestrictToPan();
    /// The left button zooms.
    void RestrictToZoom();
    /// Permanently disables navigation with the mouse buttons, and also the switching of multisampling by
    /// frame rate. The wheel still zooms.
    void KillUserControl();

    // Camera. `SetCamera` and `ResetCameraZoom` change the zoom; the other operations keep it. The standard
    // views, `SetCameraData` and `SetToPerspective` load matrices at once and need the control's context.

    // Standard views. The eye is placed one scene size from the target, on the side that the name gives:
    // Front is -Y, Right is +X, Top is +Z, SE is +X, -Y and above.
    void CameraViewTop();
    void CameraViewBottom();
    void CameraViewFront();
    void CameraViewBack();
    void CameraViewLeft();
    void CameraViewRight();
    void CameraViewNE();
    void CameraViewNW();
    void CameraViewSE();
    void CameraViewSW();
    /// Places the camera, in model units, and zooms in: to a parallel scale of 0.01, which is the minimum,
    /// and a field of view of 0.1 degrees. Takes effect at the next `OnDraw`. `up` is only stored for
    /// `GetCameraData`. From now on the camera's target no longer follows the scene's centre.
    void SetCamera(AcGePoint3d position, AcGePoint3d target, AcGeVector3d up);
    /// Places the camera, in model units, keeps the zoom and loads the view matrix at once. `up` is only
    /// stored for `GetCameraData`; the view keeps the old up axis. From now on the camera's target no longer
    /// follows the scene's centre.
    void SetCameraData(AcGePoint3d position, AcGePoint3d target, AcGeVector3d up);
    /// Copies eye, target and up vector to the arguments. The up vector is the one last set, not the camera's
    /// up axis.
    void GetCameraData(AcGePoint3d& position, AcGePoint3d& target, AcGeVector3d& up);
    /// Copies the camera's right, forward and up axes to the arguments.
    void GetCameraAxes(AcGeVector3d& x, AcGeVector3d& y, AcGeVector3d& z);
    /// Switches to perspective (true) or parallel projection. Perspective needs an `OnDraw` before the next
    /// frame: until then its near distance is negative.
    void SetToPerspective(bool on);
    /// Resets the zoom to a parallel scale of 1 and a field of view of 40 degrees. Takes effect at the next
    /// `OnDraw`. The camera does not move.
    void ResetCameraZoom();

  protected:
    [[nodiscard]] const AFX_MSGMAP* GetMessageMap() const override;
    int OnCreate(CREATESTRUCT* create);
    void OnSize(UINT type, int cx, int cy);
    void OnTimer(UINT_PTR id);
    void OnMouseMove(UINT nFlags, CPoint point);
    BOOL OnMouseWheel(UINT nFlags, short zDelta, CPoint point);
    void OnPaint();

  private:
    /// A point in client pixels.
    struct PixelPoint {
        float x = 0.0F;
        float y = 0.0F;
    };

    void StartFrameTimer();
    void GLInitializeCtrl();
    void GLInitializeLight();
    void GLInitializeMaterials();
    void GLDrawFrame();
    void GLMouseRotate(int dx, int dy);
    void GLMousePan(int dx, int dy);
    void GLMouseZoom(int d);
    void DrawDebugCubeAt(KARVGLVertex position, float size);
    void AddEntityToCache(KARVGraphicalEntity entity);
    void GLDetectExtents(KARVGraphicalEntity entity);
    void GLComputeCentroid();

    int faceCount = 0;
    PixelPoint lastMousePoint;
    float pendingPanX = 0.0F;
    float pendingPanZ = 0.0F;
    float fieldOfView = 40.0F; ///< degrees
    float zoomFactor = 1.0F;
    float pendingRotateX = 0.0F; ///< degrees
    float pendingRotateZ = 0.0F; ///< degrees
    float panScale = -1.0F;      ///< width at creation / current width; negative before the first size
    KARVGLCamera camera;
    bool extentsSeeded = false; ///< whether an append has computed the box
    KARVGLVertex extentsMax;
    KARVGLVertex extentsMin;
    KARVGLVertex centroid;
    float sceneSize = 0.0F; ///< 1.2 diagonals of the scene's box
    bool cameraSetByCaller = false;
    bool mouseRotates = true;
    bool mousePans = false;
    bool mouseZooms = false;
    double metricsFactor = 1.0;
    bool computeExtentsOnAppend = true;
    int debugCubeAngle = 0;    ///< degrees
    CWnd* parentWnd = nullptr; ///< not owned
    HDC hDC = nullptr;
    HGLRC hRC = nullptr;
    int pixelFormat = 0;
    CRect createRect;
    CRect initialRect;
    bool renderStarted = false;
    float backgroundColor[3] = {0.0F, 0.0F, 0.0F};
    int framesPerSecond = 1000;
    bool invertPanX = true;
    float aspectRatio = 1.0F; ///< width / height
    KARVGLRenderMode renderMode = KARVGLRenderModeFaces;
    bool userControlEnabled = true;
    bool multisampleOn = true;
    UINT_PTR timerId = 0;
    std::vector<KARVGraphicalEntity> entities;
    std::map<KARVGraphicalEntity::EntityType, bool> disabledTypes; ///< true: hidden
    karv::WatchedObject
        lifetime; ///< asked by operations after messages whose handlers may delete the control
};
