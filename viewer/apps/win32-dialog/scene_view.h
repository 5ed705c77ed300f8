// A model in a viewport, with all the settings of the dialog's controls. The viewport control fixes opacity
// and transparent drawing when it is created and fed; to change them, or the model, this class creates a new
// control and restores the other settings. It knows neither the dialog template nor its buttons.
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

/// Owns the viewport of a dialog. All calls come from the dialog's thread. Operations marked "Throws" throw
/// std::runtime_error where OpenGL is not available; there is no viewport then. All but `ShowModel`,
/// `FollowPlace` and `Window` require a model.
class SceneView
{
  public:
    /// The viewport becomes a child of `parent`. It takes the rectangle of `place`, another child, and
    /// follows it in the order of the Tab key.
    SceneView(HWND parent, HWND place) : parent_(parent), place_(place) {}

    /// Shows a model with all its categories: from the south-east in the projection that was set, or a flat
    /// drawing from the top in parallel projection. Mode, background and opacity are kept. Throws.
    void ShowModel(viewer::Model model);
    [[nodiscard]] const viewer::Model& Model() const { return model_; }

    /// Shows the whole model from a standard view.
    void ShowStandardView(viewer::StandardView view);
    /// Keeps the camera if the user has moved it; else fits the model again.
    void SetProjection(viewer::Projection projection);
    /// That of the model shown.
    [[nodiscard]] viewer::Projection Projection() const { return projection_; }
    void DrawLines(bool lines);
    void ShowCategory(int category, bool shown);
    /// The background is that of the host until it is set.
    void SetBackground(COLORREF color);
    [[nodiscard]] COLORREF Background() const;
    /// From 0 to 1; multiplies the opacities of the pieces. Creates a new viewport; the camera is kept.
    /// Throws.
    void SetOpacity(float opacity);
    /// Moves the viewport to the current rectangle of `place`. The model is fitted again, unless the user has
    /// moved the camera.
    void FollowPlace();

    /// The viewport's window; null before the first model.
    [[nodiscard]] HWND Window() const { return viewport_ ? viewport_->GetSafeHwnd() : nullptr; }

  private:
    void Build();
    [[nodiscard]] CRect Place() const;
    [[nodiscard]] viewer::Model FadedModel() const;
    void ShowWhole(double aspect);

    HWND parent_;
    HWND place_;
    viewer::Model model_;
    std::unique_ptr<Viewport> viewport_;
    std::unique_ptr<viewer::FittedScene> scene_; ///< the model in the viewport
    viewer::StandardView view_ = viewer::StandardView::SE;
    viewer::Projection projection_ = viewer::Projection::Perspective;
    viewer::Projection set_projection_ = viewer::Projection::Perspective;    ///< for models that are not flat
    viewer::Projection fitted_projection_ = viewer::Projection::Perspective; ///< when the model was fitted
    double aspect_ = 1.0; ///< of the viewport when the model was fitted
    bool lines_ = false;
    float opacity_ = 1.0F;
    std::optional<COLORREF> background_;
    std::set<int> hidden_;
};

} // namespace win32_dialog
