#include "viewer/window/interactive_window.h"

#include "platform/host/gs/manager.h"
#include "viewer/output/png_image.h"

#include <array>
#include <exception>
#include <filesystem>
#include <ostream>

namespace viewer
{

namespace
{

using Background = std::array<int, 3>;

/// The backgrounds that a key goes through: the first one, and white, grey and black without it.
std::vector<Background> BackgroundsFrom(const Background& first)
{
    std::vector<Background> backgrounds{first};
    for (const Background& next : {Background{255, 255, 255}, {90, 90, 90}, {0, 0, 0}})
        if (next != first)
            backgrounds.push_back(next);
    return backgrounds;
}

Background HostBackground()
{
    const AcGsColor color = acgsGetGsManager(nullptr)->displayDevice()->backgroundColor();
    return {color.red, color.green, color.blue};
}

std::string FreePictureName()
{
    for (int number = 1;; ++number) {
        std::string name = "karv-view-" + std::to_string(number) + ".png";
        if (!std::filesystem::exists(std::filesystem::symlink_status(name)))
            return name;
    }
}

} // namespace

InteractiveWindow::InteractiveWindow(PictureSize size, const ViewOptions& options, std::ostream& notices,
                                     std::ostream& errors)
    : ModelWindow(size, options, Ground::Changing), notices_(notices), errors_(errors), lines_(options.lines),
      edges_(options.edges), light_(options.light),
      backgrounds_(BackgroundsFrom(options.background.value_or(HostBackground())))
{
    Show(OpeningView(), OpeningProjection());
    ShowWindow(SW_SHOW);
}

InteractiveWindow::InteractiveWindow(PictureSize size, const ViewOptions& options, const Model& model,
                                     std::ostream& notices, std::ostream& errors)
    : InteractiveWindow(size, options, notices, errors)
{
    Update(model);
}

void InteractiveWindow::Update(const Model& model)
{
    if (has_model_ && Control().WasMovedByUser()) {
        FeedUnderCamera(model);
    } else {
        Feed(model);
        if (is_view_chosen_)
            Fit(Scene().CurrentProjection());
        else
            Show(OpeningView(), OpeningProjection());
    }
    has_model_ = true;
}

void InteractiveWindow::ShowFrom(StandardView view)
{
    is_view_chosen_ = true;
    Show(view, Scene().CurrentProjection());
}

void InteractiveWindow::FitAgain()
{
    is_view_chosen_ = true;
    Fit(Scene().CurrentProjection());
}

void InteractiveWindow::SwitchProjection()
{
    is_view_chosen_ = true;
    // A fit of one projection does not suit the other one.
    if (Control().WasMovedByUser())
        Scene().SwitchProjection();
    else
        Fit(OtherThan(Scene().CurrentProjection()));
}

void InteractiveWindow::SwitchMode()
{
    lines_ = !lines_;
    Scene().DrawLines(lines_);
}

void InteractiveWindow::SwitchEdges()
{
    edges_ = !edges_;
    Scene().DrawEdges(edges_);
}

void InteractiveWindow::SwitchLight()
{
    light_ = NextLight(light_);
    SetLight(light_);
}

void InteractiveWindow::NextBackground()
{
    background_ = (background_ + 1) % backgrounds_.size();
    const auto& [red, green, blue] = backgrounds_[background_];
    Scene().SetGround(red, green, blue);
}

void InteractiveWindow::ResetZoom()
{
    Scene().ResetZoom();
}

void InteractiveWindow::EndNavigation()
{
    if (last_key_ != L'k')
        notices_ << "karv-view: k ends navigation with the buttons for good; press it again to do so"
                 << std::endl;
    else if (!is_key_held_)
        Control().KillUserControl();
}

void InteractiveWindow::SavePicture()
{
    try {
        const std::string name = FreePictureName();
        WritePng(TakePicture(), name);
        notices_ << "karv-view: the picture is in " << name << std::endl;
    } catch (const std::exception& error) {
        errors_ << "karv-view: " << error.what() << std::endl;
    }
}

BOOL InteractiveWindow::PreTranslateMessage(MSG* message)
{
    if (message->message == WM_KEYUP)
        is_key_held_ = false;
    if (message->message != WM_CHAR || !RunKeyCommand(static_cast<wchar_t>(message->wParam)))
        return FALSE;
    is_key_held_ = true;
    return TRUE;
}

const AFX_MSGMAP* InteractiveWindow::GetMessageMap() const
{
    static constexpr std::array kEntries = {OnWmClose<&InteractiveWindow::OnClose>()};
    static const AFX_MSGMAP map{ModelWindow::GetMessageMap(), kEntries};
    return &map;
}

void InteractiveWindow::OnClose()
{
    is_open_ = false;
    ShowWindow(SW_HIDE);
}

void InteractiveWindow::OnViewportResized()
{
    if (!Control().WasMovedByUser())
        Fit(Scene().CurrentProjection());
}

} // namespace viewer
