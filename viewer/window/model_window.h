// A window with one model in its viewport: the base of interactive windows, and the source of pictures.
#pragma once

#include "viewer/scene/fitted_scene.h"
#include "viewer/window/view_options.h"
#include "viewer/window/viewport_window.h"

#include <memory>

namespace viewer
{

class ModelWindow : public ViewportWindow
{
  public:
    /// Creates a hidden window with a client area of this size. Call `Feed` next. The options must outlive the
    /// window. Throws as ViewportWindow does.
    ModelWindow(PictureSize size, const ViewOptions& options, Ground ground = Ground::Fixed);
    /// Creates the window and feeds the model.
    ModelWindow(PictureSize size, const ViewOptions& options, const Model& model,
                Ground ground = Ground::Fixed);

    /// Feeds the model, drawn as the options say. To be called once; call `Show` next. The model is only read
    /// here.
    void Feed(const Model& model);

    /// The view and the projection in which the model opens: those of the options, or else those that suit it.
    [[nodiscard]] StandardView OpeningView() const;
    [[nodiscard]] Projection OpeningProjection() const;

    /// Shows the whole model from a standard view, from the next frame on.
    void Show(StandardView view, Projection projection);
    /// Shows the whole model from the present orientation, from the next frame on.
    void Fit(Projection projection);

  protected:
    [[nodiscard]] FittedScene& Scene() { return *scene_; }

  private:
    const ViewOptions& options_;
    Ground ground_;
    std::unique_ptr<FittedScene> scene_;
};

} // namespace viewer
