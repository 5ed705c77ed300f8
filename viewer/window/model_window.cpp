#include "viewer/window/model_window.h"

#include "platform/tools/utf8.h"
#include "viewer/text/text.h"

namespace viewer
{

namespace
{

/// The model of a window that has none yet.
const Model& EmptyModel()
{
    static const Model model;
    return model;
}

} // namespace

ModelWindow::ModelWindow(PictureSize size, const ViewOptions& options, Ground ground)
    : ViewportWindow(L"karv-view", size, options.transparent), options_(options), model_(&EmptyModel())
{
    ViewportControl& control = Control();
    control.MakeCurrent();
    if (const auto& background = options_.background)
        control.SetBgColor(background->at(0), background->at(1), background->at(2));
    SetLight(options_.light);
    scene_ = std::make_unique<FittedScene>(control, *model_, options_.hidden, ground);
    scene_->DrawLines(options_.lines);
    scene_->DrawEdges(options_.edges);
}

ModelWindow::ModelWindow(PictureSize size, const ViewOptions& options, const Model& model, Ground ground)
    : ModelWindow(size, options, ground)
{
    Feed(model);
}

void ModelWindow::Feed(const Model& model)
{
    Control().MakeCurrent();
    scene_->Replace(model, false);
    is_placed_for_another_ = false;
    model_ = &model;
    UpdateTitle();
}

void ModelWindow::FeedUnderCamera(const Model& model)
{
    Control().MakeCurrent();
    scene_->Replace(model, true);
    is_placed_for_another_ = true;
    model_ = &model;
    UpdateTitle();
}

StandardView ModelWindow::OpeningView() const
{
    return options_.view.value_or(scene_->IsFlat() ? StandardView::Top : StandardView::SE);
}

Projection ModelWindow::OpeningProjection() const
{
    return options_.projection.value_or(scene_->IsFlat() ? Projection::Parallel : Projection::Perspective);
}

void ModelWindow::PlaceAnew()
{
    Control().MakeCurrent();
    if (is_placed_for_another_)
        Feed(*model_);
}

void ModelWindow::Show(StandardView view, Projection projection)
{
    PlaceAnew();
    scene_->Show(view, projection, Aspect());
    // The fit turned the wheel.
    Control().ForgetUser();
}

void ModelWindow::Fit(Projection projection)
{
    PlaceAnew();
    scene_->Fit(projection, Aspect());
    Control().ForgetUser();
}

void ModelWindow::ShowStatus(const std::string& status)
{
    if (status == status_)
        return;
    status_ = status;
    UpdateTitle();
}

void ModelWindow::UpdateTitle()
{
    std::string title = "karv-view";
    for (const std::string& part : {OneLine(model_->title), status_})
        if (!part.empty())
            title.insert(0, part + " - ");
    SetWindowTextW(GetSafeHwnd(), WideFromUtf8(title).c_str());
}

} // namespace viewer
