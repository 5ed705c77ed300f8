// A window with one model in its viewport: the base of interactive windows, and the source of pictures.
#pragma once

#include "viewer/scene/fitted_scene.h"
#include "viewer/window/view_options.h"
#include "viewer/window/viewport_window.h"

#include <memory>
#include <string>

namespace viewer
{

class ModelWindow : public ViewportWindow
{
  public:
    /// Creates a hidden window with a client area of this size, which shows an empty model, drawn as the
    /// options say. Throws as ViewportWindow does.
    ModelWindow(PictureSize size, const ViewOptions& options, Ground ground = Ground::Fixed);
    /// Creates the window and feeds the model.
    ModelWindow(PictureSize size, const ViewOptions& options, const Model& model,
                Ground ground = Ground::Fixed);

    /// Shows this model instead of the one before; call `Show` next. The model must outlive the window or the
    /// next call.
    void Feed(const Model& model);
    /// The same for a model that contains the one before. The camera is kept until the next `Show` or `Fit`.
    void FeedUnderCamera(const Model& model);

    /// The view and the projection of the options; if they are absent, those that suit the model.
    [[nodiscard]] StandardView OpeningView() const;
    [[nodiscard]] Projection OpeningProjection() const;

    /// Shows the whole model from a standard view, from the next frame on.
    void Show(StandardView view, Projection projection);
    /// Shows the whole model from the present orientation, from the next frame on.
    void Fit(Projection projection);
    /// Shows a text in front of the title, of one line and in UTF-8; none if empty.
    void ShowStatus(const std::string& status);

  protected:
    [[nodiscard]] FittedScene& Scene() { return *scene_; }

  private:
    /// Makes the control's context current, and feeds the model again if it has the placement of another.
    void PlaceAnew();
    /// Sets the title of the window from the status and the model's title.
    void UpdateTitle();

    ViewOptions options_;
    const Model* model_; ///< not owned
    std::unique_ptr<FittedScene> scene_;
    bool is_placed_for_another_ = false; ///< the model has the placement of the one before
    std::string status_;
};

} // namespace viewer
