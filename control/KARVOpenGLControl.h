// The viewport: a child window with an OpenGL context that host dialogs embed. It owns its camera and its
// cache of entities, draws them from a window timer, and keeps the box of the scene, which steers the camera.
//
// What every host should know:
//  - Call `OnDraw(nullptr)` after every camera command: frames never load matrices.
//  - The near distance is fixed at 0.01 and coordinates are floats, so feed a model moved into the positive
//    octant and scaled to a scene size of about 0.2.
//  - Colour, opacity and transparent drawing are fixed at append and at creation; clearing keeps the face
//    total, the extents and the switches. To change one, make a new control and feed it again.
//  - Line mode shows lines and the edges of bodies, and nothing of client faces.
//  - With two controls alive GL calls go to the context made current last, and destroying one leaves none
//    current: a host that wants both calls `wglMakeCurrent` itself.
#pragma once

#include "camera/KARVGLCamera.h"
#include "geometry/KARVGraphicalEntity.h"
#include "platform/framework/geometry.h"
#include "platform/framework/window.h"
#include "platform/host/ge/geometry.h"

#include <cstdint>
#include <map>
#include <vector>

/// How entities are drawn. Any value but 0 draws faces.
enum KARVGLRenderMode : std::int32_t {
    KARVGLRenderModeLines = 0, ///< lines and the edges of bodies alone
    KARVGLRenderModeFaces = 1, ///< faces, and lines where an entity has no faces
};

/// The viewport control.
///
/// Everything runs on the thread that owns the host's windows. No argument is checked and no operation
/// throws: a fault is reported through the tools library, leaves what was done by then, and a value-returning
/// operation answers 0. The control's GL context is made current once, when the window is created; operations
/// that draw or build faces need it to be still current.
class KARV_MODULE_API KARVOpenGLControl : public CWnd
{
  public:
    /// No window yet and no call of GL; the background is what the host's is now.
    KARVOpenGLControl();
    /// Deletes the context and destroys the window, where they still are. No context is current afterwards,
    /// whichever was. The display lists of faces go with the context.
    ~KARVOpenGLControl() override;

    // Creation.

    /// Creates the child window in `parent` at `rect` (client pixels of the parent) with its GL context,
    /// which is current when this returns. `transparent` turns depth test and culling off and blending on,
    /// for good: translucent pieces are then drawn in the order of their appending. `parent` is not owned and
    /// must outlive the window, or destroy it. Where the window is refused, the control stays without one and
    /// later calls draw nothing.
    void CreateCtrl(CRect rect, CWnd* parent, bool transparent);

    // Frames and rendering.

    /// Applies the queued camera motion, loads projection and view and takes the keyboard focus; draws
    /// nothing itself. A zoom beyond the camera's limits is brought back to them. `dc` is not used and may be
    /// null. Needs the control's context.
    void OnDraw(CDC* dc);
    /// Starts the frame timer without waiting for the first paint message, and applies the camera as `OnDraw`
    /// does. A second call arms the same timer again. Needs the control's window and context.
    void ForceRenderStart();
    /// Sets the background from the next frame on; channels from 0 to 255, of others their low 8 bits. Needs
    /// the control's context.
    void SetBgColor(int r, int g, int b);
    /// Takes effect with the next frame.
    void SetRenderMode(KARVGLRenderMode mode);
    /// Turns light and lighting off or on from the next frame on; nothing but the context remembers it.
    /// Drawing lines turns lighting on again, with the light still off. Needs the control's context.
    void SetLightsOff(bool off);
    /// Keeps a factor for callers; nothing reads it.
    void SetMetricsFactor(double factor);

    // Geometry. Each append makes one entity, drawn after those before it, from the next frame on.

    /// Appends a solid, which is only read and must not be null, with a colour index (cut to its low 8 bits)
    /// and an opacity from 0 to 1: its faces, and its physical edges for line mode.
    void AppendGeometry(AModeler::Body* body, KARVGraphicalEntity::EntityType type, unsigned short color,
                        float alpha);
    /// Appends a line of the host's database in its own colour; other kinds, and null, append an entity
    /// without geometry. The entity is only read.
    void AppendGeometry(AcDbEntity* entity, KARVGraphicalEntity::EntityType type);
    /// Appends a copy of an entity as it is.
    void AppendGeometry(KARVGraphicalEntity entity);
    /// Appends polygons with a colour index (cut to its low 8 bits) and an opacity from 0 to 1. Needs the
    /// control's context.
    void AppendGeometry(std::vector<KARVGLFace> faces, KARVGraphicalEntity::EntityType type,
                        unsigned short color, float alpha);
    /// Reserves room for `count` entities in all, so that appending up to there moves none. A count below the
    /// present room, or a negative one, changes nothing.
    void AllocateMemory(int count);
    /// Removes every entity. The face total, the extents and the switches stay: geometry appended later
    /// extends the old scene. The argument is not used.
    void ClearGeometry(bool unused);
    /// Shows a category from the next frame on, however often it was hidden. All are shown at first.
    void EnableObject(KARVGraphicalEntity::EntityType type);
    /// Hides a category, any 32-bit value, from the next frame on; it still counts in totals and extents.
    void DisableObject(KARVGraphicalEntity::EntityType type);
    /// The number of faces appended since construction, those cleared since then included.
    int GetFaceNumber();

    // Extents.

    /// Whether appends grow the scene's box (they do at first). The box itself is not changed: what was
    /// appended in between is not made up for.
    void ComputeExtents(bool compute);
    /// Replaces the scene's box, in model units narrowed to float, corners as given and not sorted; the
    /// camera's target moves to the centre and the far distance to 120 diagonals of the box, the target only
    /// while the host has not placed the camera itself. Before the first append that computes extents the
    /// override is provisional: that append discards it.
    void OverrideExtents(AcGePoint3d min_corner, AcGePoint3d max_corner);

    // Navigation. Half a degree for each pixel dragged, one per cent of zoom for each pixel down. The middle
    // button always pans, the right one always zooms.

    /// The left button orbits (across) and tilts (up and down), as it does at first.
    void RestrictToRotate();
    /// The left button pans.
    void RestrictToPan();
    /// The left button zooms.
    void RestrictToZoom();
    /// Ends navigation with the mouse buttons for good, and with it the drop of multisampling in slow scenes;
    /// the wheel still zooms.
    void KillUserControl();

    // Camera. The zoom is kept by all but the two operations that say otherwise. The standard views,
    // `SetCameraData` and `SetToPerspective` load matrices at once and need the control's context for it.

    // Standard views: the eye goes to one scene size from the target, on the side that the name says (Front
    // is -Y, Right is +X, Top is +Z; SE is +X, -Y and above).
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
    /// Places the camera, in model units, and sets the zoom close (a parallel scale of 0.01, its lowest, and
    /// a field of view of 0.1 degrees); shows at the next `OnDraw`. `up` is only kept to be read back. Ends
    /// the centring on the scene for good.
    void SetCamera(AcGePoint3d position, AcGePoint3d target, AcGeVector3d up);
    /// Places the camera, in model units, keeps the zoom and loads the view at once. `up` is only kept to be
    /// read back: the view takes the up axis from before. Ends the centring on the scene for good.
    void SetCameraData(AcGePoint3d position, AcGePoint3d target, AcGeVector3d up);
    /// Eye, target, and the up vector last set, which is not the camera's current up axis.
    void GetCameraData(AcGePoint3d& position, AcGePoint3d& target, AcGeVector3d& up);
    /// The camera's right, forward and up axes.
    void GetCameraAxes(AcGeVector3d& x, AcGeVector3d& y, AcGeVector3d& z);
    /// Switches between perspective and parallel projection. Perspective needs an `OnDraw` before the next
    /// frame: until then its near distance is negative.
    void SetToPerspective(bool on);
    /// Puts the zoom back to 1 and 40 degrees; shows at the next `OnDraw`. The camera stays where it is.
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
    /// Two floats, in client pixels.
    struct PixelPoint {
        float x = 0.0F;
        float y = 0.0F;
    };

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
    float panScale = -1.0F;      ///< width at creation / width now; negative before the first size
    KARVGLCamera camera;
    bool extentsSeeded = false; ///< an append has computed the box; never false again
    KARVGLVertex extentsMax;
    KARVGLVertex extentsMin;
    KARVGLVertex centroid;
    float sceneSize = 0.0F; ///< 1.2 times the diagonal of the scene's box
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
};
