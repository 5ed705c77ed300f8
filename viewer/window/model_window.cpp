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

ModelWindow::ModelWindow(PictureSize size, const ViewOptions& options, const Model& model)
    : ViewportWindow(TitleOf(model), size, options.transparent)
{
    KARVOpenGLControl& control = Control();
    if (const auto& background = options.background)
        control.SetBgColor(background->at(0), background->at(1), background->at(2));
    scene_ = std::make_unique<FittedScene>(control, model, options.hidden);
    scene_->DrawLines(options.lines);
}

void ModelWindow::Show(StandardView view, Projection projection)
{
    Control().MakeCurrent();
    scene_->Show(view, projection, Aspect());
}

} // namespace viewer
