// Fits the view of a viewport control to points, by public operations of the control alone, so that every
// host can use it. It does not know what the points belong to.
#pragma once

#include "control/KARVOpenGLControl.h"
#include "viewer/scene/model.h"
#include "viewer/scene/scene_placement.h"
#include "viewer/scene/standard_view.h"

#include <optional>
#include <span>

namespace viewer
{

/// The share of the viewport's width or height, whichever is larger, that fitted points cover.
inline constexpr double kFittedShare = 0.915;

struct FitOptions {
    std::optional<StandardView> view = std::nullopt;     ///< if absent, the orientation stays
    std::optional<Projection> projection = std::nullopt; ///< if absent, the projection stays
    /// Width divided by height of the control's client area; if absent, that of its window. 1 is used for an
    /// empty window.
    std::optional<double> aspect = std::nullopt;
    /// The scene size and the distance of the eye from the middle of the points, in units of the scene. It is
    /// enlarged where it is less than 1.54 diagonals of the box of the points, so that no orbit brings a
    /// point nearer than the near distance.
    double scene_size = kSceneSize;
};

/// Shows all points, centred. The larger of their shares of the viewport's width and height is
/// `kFittedShare`, within 0.1 %, for aspects from 1:10 to 10:1 and points whose extents in the picture
/// are at least a 4000th of their diagonal. Points that coincide in the picture are shown with zoom 1.
/// Returns the zoom, relative to that of `ResetCameraZoom`.
///
/// The points are in units of the scene; those that are not finite are ignored. Without a finite one nothing
/// changes, and the result is empty. Points inside the convex hull of the others may be left out. The
/// time is proportional to the number of points: 100 000 take a few milliseconds.
///
/// The camera's target becomes the middle of the points and no longer follows the scene's box, as after every
/// `SetCameraData`. Where the zoom of a parallel projection would be below 0.02, the scene size is smaller
/// until the next fit. The control gets messages of the mouse wheel, which its window also passes on to its
/// parent, and takes the keyboard focus. Needs the control's context and window.
std::optional<double> FitView(KARVOpenGLControl& control, std::span<const Point> points,
                              const FitOptions& options = {});

/// Switches the projection if the other one is in force; the camera and the zoom stay. Needs the control's
/// context, and an `OnDraw` before the next frame.
void SetProjection(KARVOpenGLControl& control, Projection projection);

/// Multiplies the zoom by a factor from 0.0001 to 30, within 0.1 %, by messages of the mouse wheel, which
/// also go to the parent. The control limits the zoom. Needs the control's context and window.
void MultiplyZoom(KARVOpenGLControl& control, double factor);

} // namespace viewer
