#include "viewer/apps/win32-dialog/scene_view.h"

#include "platform/host/gs/manager.h"
#include "platform/winsys/opengl.h"
#include "viewer/scene/light.h"

#include <algorithm>
#include <stdexcept>
#include <utility>
#include <vector>

namespace win32_dialog
{

namespace
{

double AspectOf(const CRect& rect)
{
    return static_cast<double>(rect.Width()) / static_cast<double>(rect.Height());
}

} // namespace

void SceneView::ShowModel(viewer::Model model)
{
    model_ = std::move(model);
    hidden_.clear();
    Build();
    const bool is_flat = scene_->IsFlat();
    view_ = is_flat ? viewer::StandardView::Top : viewer::StandardView::SE;
    projection_ = is_flat ? viewer::Projection::Parallel : set_projection_;
    ShowWhole(AspectOf(Place()));
}

void SceneView::Build()
{
    scene_.reset();
    viewport_.reset();
    const CRect rect = Place();
    const viewer::Model faded = FadedModel();
    viewport_ = std::make_unique<Viewport>();
    viewport_->CreateCtrl(rect, CWnd::FromHandle(parent_), faded.IsTranslucent());
    if (Window() == nullptr || wglGetCurrentContext() == nullptr)
        throw std::runtime_error("no OpenGL can be had");
    if (opacity_ >= 1.0F) {
        // A transparent control draws all faces in the order of feeding, without a depth test. That suits
        // models that are translucent as a whole; here opaque faces must hide what is behind them.
        glEnable(GL_DEPTH_TEST);
    }
    SetWindowPos(Window(), place_, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
    viewer::SetLight(viewer::Light::Shoulder);
    scene_ = std::make_unique<viewer::FittedScene>(*viewport_, faded, std::vector<int>{},
                                                   viewer::Ground::Changing);
    scene_->DrawLines(lines_);
    if (background_)
        SetBackground(*background_);
    for (const int category : hidden_)
        scene_->ShowCategory(category, false);
    viewport_->ForceRenderStart();
}

CRect SceneView::Place() const
{
    CRect rect;
    GetWindowRect(place_, &rect);
    MapWindowPoints(nullptr, parent_, reinterpret_cast<POINT*>(static_cast<RECT*>(&rect)), 2);
    rect.right = std::max(rect.right, rect.left + 1);
    rect.bottom = std::max(rect.bottom, rect.top + 1);
    return rect;
}

viewer::Model SceneView::FadedModel() const
{
    viewer::Model faded = model_;
    for (viewer::Piece& piece : faded.pieces)
        piece.alpha *= opacity_;
    return faded;
}

void SceneView::ShowWhole(double aspect)
{
    aspect_ = aspect;
    fitted_projection_ = projection_;
    scene_->Show(view_, projection_, aspect);
    viewport_->ForgetNavigation();
}

void SceneView::ShowStandardView(viewer::StandardView view)
{
    view_ = view;
    ShowWhole(AspectOf(Place()));
}

void SceneView::SetProjection(viewer::Projection projection)
{
    set_projection_ = projection;
    if (projection_ == projection)
        return;
    projection_ = projection;
    // A fit of one projection does not suit the other one.
    if (viewport_->HasNavigated())
        scene_->SwitchProjection();
    else
        ShowWhole(AspectOf(Place()));
}

void SceneView::DrawLines(bool lines)
{
    lines_ = lines;
    scene_->DrawLines(lines);
}

void SceneView::ShowCategory(int category, bool shown)
{
    if (shown)
        hidden_.erase(category);
    else
        hidden_.insert(category);
    scene_->ShowCategory(category, shown);
}

void SceneView::SetBackground(COLORREF color)
{
    background_ = color;
    scene_->SetGround(GetRValue(color), GetGValue(color), GetBValue(color));
}

COLORREF SceneView::Background() const
{
    const AcGsColor host = acgsGetGsManager(nullptr)->displayDevice()->backgroundColor();
    return background_.value_or(RGB(host.red, host.green, host.blue));
}

void SceneView::SetOpacity(float opacity)
{
    opacity_ = opacity;
    AcGePoint3d eye;
    AcGePoint3d target;
    AcGeVector3d up;
    viewport_->GetCameraData(eye, target, up);
    const bool was_moved = viewport_->HasNavigated();
    const std::vector<MouseMessage> navigation = viewport_->Navigation();
    const viewer::Projection projection = projection_;
    projection_ = fitted_projection_;
    Build();
    ShowWhole(aspect_);
    if (projection != projection_)
        scene_->SwitchProjection();
    projection_ = projection;
    // The control offers no way to read its zoom or to set its axes. Repeating the user's mouse messages
    // restores both.
    for (const MouseMessage& mouse : navigation)
        SendMessageW(Window(), mouse.message, mouse.wparam, mouse.lparam);
    if (!was_moved)
        return;
    // The distance that a pixel pans depends on the sizes that the previous window had, so the position is
    // set afterwards.
    viewport_->SetCameraData(eye, target, up);
    viewport_->OnDraw(nullptr);
}

void SceneView::FollowPlace()
{
    if (Window() == nullptr)
        return;
    const CRect rect = Place();
    viewport_->MoveWindow(rect);
    if (!viewport_->HasNavigated())
        ShowWhole(AspectOf(rect));
}

} // namespace win32_dialog
