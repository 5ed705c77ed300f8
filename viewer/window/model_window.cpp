#include "viewer/window/model_window.h"

#include "platform/tools/utf8.h"
#include "viewer/text/text.h"

namespace viewer
{

namespace
{

std::wstring TitleOf(const Model& model)
{
    return (model.title.empty() ? L"" : WideFromUtf8(OneLine(model.title)) + L" - ") +
           std::wstring(L"karv-view");
}

} // namespace

ModelWindow::ModelWindow(PictureSize size, const ViewOptions& options, Ground ground)
    : ViewportWindow(L"karv-view", size, options.transparent), options_(options), ground_(ground)
{
}

ModelWindow::ModelWindow(PictureSize size, const ViewOptions& options, const Model& model, Ground ground)
    : ModelWindow(size, options, ground)
{
    Feed(model);
}

void ModelWindow::Feed(const Model& model)
{
    SetWindowTextW(GetSafeHwnd(), TitleOf(model).c_str());
    ViewportControl& control = Control();
    control.MakeCurrent();
    if (const auto& background = options_.background)
        control.SetBgColor(background->at(0), background->at(1), background->at(2));
    SetLight(options_.light);
    scene_ = std::make_unique<FittedScene>(control, model, options_.hidden, ground_);
    scene_->DrawLines(options_.lines);
    scene_->DrawEdges(options_.edges);
}

StandardView ModelWindow::OpeningView() const
{
    return options_.view.value_or(scene_->IsFlat() ? StandardView::Top : StandardView::SE);
}

Projection ModelWindow::OpeningProjection() const
{
    return options_.projection.value_or(scene_->IsFlat() ? Projection::Parallel : Projection::Perspective);
}

void ModelWindow::Show(StandardView view, Projection projection)
{
    Control().MakeCurrent();
    scene_->Show(view, projection, Aspect());
    // The fit turned the wheel.
    Control().ForgetUser();
}

void ModelWindow::Fit(Projection projection)
{
    Control().MakeCurrent();
    scene_->Fit(projection, Aspect());
    Control().ForgetUser();
}

} // namespace viewer
