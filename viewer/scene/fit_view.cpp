#include "viewer/scene/fit_view.h"

#include "platform/winsys/opengl.h"
#include "viewer/scene/affine.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <numbers>
#include <vector>

namespace viewer
{

namespace
{

/// The control's scene size, in diagonals of its box.
constexpr double kSceneSizePerDiagonal = 1.2;
/// The control's field of view at zoom 1.
constexpr double kFieldOfView = Radians(40.0);

/// The projection of the current context. NOTE: the last element of the matrix is 0 in perspective.
Projection PresentProjection()
{
    std::array<GLdouble, 16> matrix{};
    glGetDoublev(GL_PROJECTION_MATRIX, matrix.data());
    return matrix.back() == 0.0 ? Projection::Perspective : Projection::Parallel;
}

/// The directions of a camera, of unit length.
struct Axes {
    Point right;
    Point forward;
    Point up;
};

Point ToPoint(const AcGeVector3d& vector)
{
    return {vector.x, vector.y, vector.z};
}

AcGePoint3d ToHost(const Point& point)
{
    return {point.x, point.y, point.z};
}

/// The axes with which the control looks: from the eye to the target, turned upright by its up axis.
Axes PresentAxes(KARVOpenGLControl& control)
{
    AcGePoint3d eye;
    AcGePoint3d target;
    AcGeVector3d up_vector;
    control.GetCameraData(eye, target, up_vector);
    AcGeVector3d x;
    AcGeVector3d y;
    AcGeVector3d z;
    control.GetCameraAxes(x, y, z);
    const Point sight = ToPoint(target - eye);
    const Point right = Cross(sight, ToPoint(z));
    constexpr double kParallel = 1e-6;
    // The camera of a new control has its eye in its target.
    if (!(Length(right) > kParallel * Length(sight)))
        return {ToPoint(x), ToPoint(y), ToPoint(z)};
    const Point forward = sight * (1.0 / Length(sight));
    const Point unit_right = right * (1.0 / Length(right));
    return {unit_right, forward, Cross(unit_right, forward)};
}

/// The least and the greatest of some values.
struct Range {
    double low = std::numeric_limits<double>::infinity();
    double high = -std::numeric_limits<double>::infinity();

    void Add(double value)
    {
        low = std::min(low, value);
        high = std::max(high, value);
    }
    [[nodiscard]] double Middle() const { return low + (high - low) * 0.5; }
    [[nodiscard]] double Half() const { return (high - low) * 0.5; }
};

/// Points along the axes of a camera: x to the right, y up, z forward.
class SeenPoints
{
  public:
    SeenPoints(std::span<const Point> points, const Axes& axes) : axes_(axes)
    {
        points_.reserve(points.size());
        for (const Point& point : points)
            if (IsFinite(point)) {
                box_.Add(point);
                Add({Dot(point, axes.right), Dot(point, axes.up), Dot(point, axes.forward)});
            }
    }

    /// Of the box of the points along the axes of the scene.
    [[nodiscard]] double Diagonal() const { return box_.Diagonal(); }
    /// Half of the height of a viewport of this aspect that the points just touch in parallel projection.
    [[nodiscard]] double HalfHeight(double aspect) const { return std::max(y_.Half(), x_.Half() / aspect); }

    /// Moves the middle sideways so that it is the middle of the picture seen from an eye at this distance
    /// before it. Returns the tangent of half of the vertical field of view that the points just touch in a
    /// viewport of this aspect.
    double CenterFrom(double distance, double aspect)
    {
        // The slope of a point is (x - middle) / depth. The points with the least and the greatest slope give
        // the middle at which these slopes are opposite. Other points may have the extreme slopes then, so
        // this is repeated.
        constexpr int kSteps = 20;
        for (int step = 0; step < kSteps; ++step) {
            const double x = middle_.x;
            const double y = middle_.y;
            middle_.x = Balanced(&Point::x, distance);
            middle_.y = Balanced(&Point::y, distance);
            constexpr double kSmall = 1e-6;
            const double moved = std::max(std::abs(middle_.x - x), std::abs(middle_.y - y));
            if (moved <= kSmall * HalfHeight(aspect))
                break;
        }
        double tangent = 0.0;
        for (const Point& point : points_) {
            const double depth = DepthFrom(distance, point);
            tangent = std::max({tangent, std::abs(point.x - middle_.x) / depth / aspect,
                                std::abs(point.y - middle_.y) / depth});
        }
        return tangent;
    }

    /// In units of the scene.
    [[nodiscard]] Point Middle() const
    {
        return axes_.right * middle_.x + axes_.up * middle_.y + axes_.forward * middle_.z;
    }

  private:
    void Add(const Point& point)
    {
        points_.push_back(point);
        x_.Add(point.x);
        y_.Add(point.y);
        depth_.Add(point.z);
        middle_ = {x_.Middle(), y_.Middle(), depth_.Middle()};
    }

    [[nodiscard]] double DepthFrom(double distance, const Point& point) const
    {
        return point.z - middle_.z + distance;
    }

    /// The middle along an axis at which the slopes of two points are opposite: of those with the least and
    /// the greatest slope from the present middle.
    [[nodiscard]] double Balanced(double Point::*along, double distance) const
    {
        const Point* least = nullptr;
        const Point* greatest = nullptr;
        Range slopes;
        for (const Point& point : points_) {
            const double slope = (point.*along - middle_.*along) / DepthFrom(distance, point);
            if (slope < slopes.low)
                least = &point;
            if (slope > slopes.high)
                greatest = &point;
            slopes.Add(slope);
        }
        const double a = 1.0 / DepthFrom(distance, *least);
        const double b = 1.0 / DepthFrom(distance, *greatest);
        return (least->*along * a + greatest->*along * b) / (a + b);
    }

    Axes axes_;
    std::vector<Point> points_;
    Box box_;
    Range x_;
    Range y_;
    Range depth_;
    Point middle_;
};

/// The distance of the eye and the zoom of the control.
struct Fitting {
    double distance = 0.0; ///< of the eye from the middle
    double zoom = 1.0;
    double scene_size = kSceneSize;
};

Fitting FitPerspective(SeenPoints& seen, double aspect, double scene_size)
{
    // The control limits its field of view to 0.01 to 150 degrees. If a narrow window needs more than 140,
    // the eye moves back.
    const double max_tangent = std::tan(Radians(70.0));
    constexpr double kMinZoom = 0.01 / 40.0;
    constexpr int kSteps = 4;
    Fitting fitting{scene_size, 1.0, scene_size};
    double tangent = 0.0;
    for (int step = 0; step < kSteps; ++step) {
        tangent = seen.CenterFrom(fitting.distance, aspect) / kFittedShare;
        if (tangent <= max_tangent)
            break;
        fitting.distance *= tangent / max_tangent;
    }
    constexpr double kNothing = 1e-6;
    if (tangent > kNothing)
        fitting.zoom = std::max(2.0 * std::atan(tangent) / kFieldOfView, kMinZoom);
    return fitting;
}

Fitting FitParallel(const SeenPoints& seen, double aspect, double scene_size)
{
    // At zoom 1 the viewport is one scene size wide. The control limits its zoom to 0.01 at least and 9 at
    // most, and the depth to 100 scene sizes on either side of the eye: with less than a 75th of the scene
    // size, the depth would not reach beyond the points.
    constexpr double kLowZoom = 0.02;
    constexpr double kMinZoom = 0.01;
    constexpr double kMaxZoom = 8.0;
    constexpr double kMinSceneSize = 1.0 / 75.0;
    constexpr double kNothing = 1e-6;
    const double width = 2.0 * seen.HalfHeight(aspect) * aspect / kFittedShare;
    const double zoom = width / scene_size;
    if (zoom <= kNothing)
        return {scene_size, 1.0, scene_size};
    const double factor = zoom > kMaxZoom ? zoom / kMaxZoom : std::clamp(zoom / kLowZoom, kMinSceneSize, 1.0);
    return {scene_size, std::max(zoom / factor, kMinZoom), scene_size * factor};
}

void ApplyStandardView(KARVOpenGLControl& control, StandardView view)
{
    using Command = void (KARVOpenGLControl::*)();
    static constexpr std::array<Command, kStandardViews.size()> kCommands = {
        &KARVOpenGLControl::CameraViewFront, &KARVOpenGLControl::CameraViewBack,
        &KARVOpenGLControl::CameraViewLeft,  &KARVOpenGLControl::CameraViewRight,
        &KARVOpenGLControl::CameraViewTop,   &KARVOpenGLControl::CameraViewBottom,
        &KARVOpenGLControl::CameraViewSE,    &KARVOpenGLControl::CameraViewSW,
        &KARVOpenGLControl::CameraViewNE,    &KARVOpenGLControl::CameraViewNW};
    (control.*kCommands.at(static_cast<std::size_t>(view)))();
}

double AspectOf(const KARVOpenGLControl& control)
{
    CRect client;
    control.GetClientRect(&client);
    const bool is_empty = client.Width() <= 0 || client.Height() <= 0;
    return is_empty ? 1.0 : static_cast<double>(client.Width()) / static_cast<double>(client.Height());
}

void SetSceneSize(KARVOpenGLControl& control, double scene_size)
{
    // A cube at the origin, where floats are exact enough for its diagonal.
    const double edge = scene_size / (kSceneSizePerDiagonal * std::numbers::sqrt3);
    control.OverrideExtents(AcGePoint3d(0.0, 0.0, 0.0), AcGePoint3d(edge, edge, edge));
}

/// Sends a message of the mouse wheel that multiplies the zoom by this many hundredths, 1 to 3300.
void TurnWheel(KARVOpenGLControl& control, int percent)
{
    // Ten units of the wheel zoom by a hundredth.
    const auto delta = static_cast<short>(10 * (100 - percent));
    if (delta != 0)
        SendMessageW(control.GetSafeHwnd(), WM_MOUSEWHEEL, MAKEWPARAM(0, static_cast<WORD>(delta)), 0);
}

/// Hundredths, whose product is close to `factor`: the first two at most 100, the last one at least 1.
std::array<int, 3> PercentsOf(double factor)
{
    constexpr int kLow = 50;
    constexpr int kHundred = 100;
    constexpr double kMillion = 1e6;
    std::array<int, 3> best{kHundred, kHundred, kHundred};
    double best_error = std::numeric_limits<double>::infinity();
    for (int first = kHundred; first >= kLow; --first)
        for (int second = first; second >= kLow; --second) {
            const int product = first * second;
            const int third = static_cast<int>(std::lround(kMillion * factor / product));
            const double error = std::abs(static_cast<double>(product) * third / kMillion - factor);
            if (error < best_error) {
                best = {first, second, third};
                best_error = error;
            }
        }
    return best;
}

} // namespace

void SetProjection(KARVOpenGLControl& control, Projection projection)
{
    // SetToPerspective pops the projection stack; in a control that is in perspective already, it would
    // underflow.
    if (projection != PresentProjection())
        control.SetToPerspective(projection == Projection::Perspective);
}

void MultiplyZoom(KARVOpenGLControl& control, double factor)
{
    // The product of three counts of hundredths is precise while none of them is very low.
    constexpr double kLow = 0.02;
    constexpr int kTenth = 10;
    while (factor < kLow) {
        TurnWheel(control, kTenth);
        factor *= 10.0;
    }
    for (const int percent : PercentsOf(factor))
        TurnWheel(control, percent);
}

std::optional<double> FitView(KARVOpenGLControl& control, std::span<const Point> points,
                              const FitOptions& options)
{
    if (std::none_of(points.begin(), points.end(), IsFinite))
        return std::nullopt;
    if (options.view) {
        // Standard views place the eye at a distance of one scene size, which a new control does not have.
        SetSceneSize(control, options.scene_size);
        ApplyStandardView(control, *options.view);
    }
    // Before the fitted scene size is set, which may move the target.
    const Axes axes = PresentAxes(control);
    const Projection projection = options.projection.value_or(PresentProjection());
    SetProjection(control, projection);

    SeenPoints seen(points, axes);
    const double aspect = options.aspect.value_or(AspectOf(control));
    const double scene_size = std::max(options.scene_size, seen.Diagonal() / kModelPerSceneSize);
    const Fitting fitting = projection == Projection::Perspective ? FitPerspective(seen, aspect, scene_size)
                                                                  : FitParallel(seen, aspect, scene_size);
    AcGePoint3d eye;
    AcGePoint3d target;
    AcGeVector3d up;
    control.GetCameraData(eye, target, up);
    SetSceneSize(control, fitting.scene_size);
    const Point middle = seen.Middle();
    control.SetCameraData(ToHost(middle - axes.forward * fitting.distance), ToHost(middle), up);
    control.ResetCameraZoom();
    MultiplyZoom(control, fitting.zoom);
    // Frames never load matrices; OnDraw does. It also replaces the temporary projection that a switch to
    // perspective leaves behind.
    control.OnDraw(nullptr);
    return fitting.zoom;
}

} // namespace viewer
