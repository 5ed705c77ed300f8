// A model in a viewport, with everything that the dialog's controls choose about it. The control fixes
// opacity and transparent drawing when it is fed: to change them, or the model, it is built anew here, and
// everything else is as it was. It knows no dialog template and no button.
#pragma once

#include "viewer/apps/win32-dialog/viewport.h"
#include "viewer/scene/fitted_scene.h"
#include "viewer/scene/model.h"
#include "viewer/scene/standard_view.h"

#include <memory>
#include <optional>
#include <set>

namespace win32_dialog
{

/// The viewport's part of a dialog. All operations are for the dialog's thread; those that say so throw
/// std::runtime_error where no OpenGL can be had, and no viewport is there then.
class SceneView
{
  public:
    /// The viewport becomes a child of `parent` that follows `place`, another child, in the order of the Tab
    /// key, and takes its rectangle.
    SceneView(HWND parent, HWND place) : parent_(parent), place_(place) {}

    /// Shows a model from the south-east with all its categories; projection, mode, background and opacity
    /// stay. Throws.
    void ShowModel(viewer::Model model);
    [[nodiscard]] const viewer::Model& Model() const { return model_; }

    /// The whole model from one of the standard sides.
    void ShowStandardView(viewer::StandardView view);
    void SetProjection(viewer::Projection projection);
    void DrawLines(bool lines);
    void ShowCategory(int category, bool shown);
    /// The background; until it is set, that of the host.
    void SetBackground(COLORREF color);
    [[nodiscard]] COLORREF Background() const;
    /// From 0 to 1, times the parts' own opacities. Builds the viewport anew; the camera stays. Throws.
    void SetOpacity(float opacity);
    /// Brings the viewport to where `place` is now. The whole model stays in view, unless the user has moved
    /// the camera.
    void FollowPlace();

    /// Null before the first model.
    [[nodiscard]] HWND Window() const { return viewport_ ? viewport_->GetSafeHwnd() : nullptr; }

  private:
    void Build();
    [[nodiscard]] CRect Place() const;
    [[nodiscard]] viewer::Model FadedModel() const;
    void LookAtCenter();
    void ShowWhole(double aspect);

    HWND parent_;
    HWND place_;
    viewer::Model model_;
    std::unique_ptr<Viewport> viewport_;
    std::unique_ptr<viewer::FittedScene> scene_; ///< of the model in the viewport
    viewer::StandardView view_ = viewer::StandardView::SE;
    viewer::Projection projection_ = viewer::Projection::Perspective;
    double aspect_ = 1.0; ///< that the model was fitted to
    bool lines_ = false;
    float opacity_ = 1.0F;
    std::optional<COLORREF> background_;
    std::set<int> hidden_;
    bool camera_was_placed_ = false; ///< the control no longer centres on the model of its own accord
};

} // namespace win32_dialog
