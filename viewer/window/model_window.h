// A window with one model in its viewport, fitted: what pictures and interactive windows have in common.
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
    /// A hidden window of this size that shows the model as the options want it drawn. The model is only
    /// read. Throws as ViewportWindow does.
    ModelWindow(PictureSize size, const ViewOptions& options, const Model& model);

    /// Shows the whole model from the next frame on.
    void Show(StandardView view, Projection projection);

  protected:
    [[nodiscard]] FittedScene& Scene() { return *scene_; }

  private:
    std::unique_ptr<FittedScene> scene_;
};

} // namespace viewer
