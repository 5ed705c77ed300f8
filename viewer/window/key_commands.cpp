// The keys of an interactive window: one table of what they do and how they are explained.
#include "viewer/window/interactive_window.h"

#include <algorithm>
#include <array>
#include <cwctype>
#include <ostream>

namespace viewer
{

std::span<const InteractiveWindow::KeyCommand> InteractiveWindow::KeyCommands()
{
    static constexpr std::array kCommands = {
        KeyCommand{L'1', "front view", [](auto& window) { window.ShowFrom(StandardView::Front); }},
        KeyCommand{L'2', "back view", [](auto& window) { window.ShowFrom(StandardView::Back); }},
        KeyCommand{L'3', "left view", [](auto& window) { window.ShowFrom(StandardView::Left); }},
        KeyCommand{L'4', "right view", [](auto& window) { window.ShowFrom(StandardView::Right); }},
        KeyCommand{L'5', "top view", [](auto& window) { window.ShowFrom(StandardView::Top); }},
        KeyCommand{L'6', "bottom view", [](auto& window) { window.ShowFrom(StandardView::Bottom); }},
        KeyCommand{L'7', "south-east view", [](auto& window) { window.ShowFrom(StandardView::SE); }},
        KeyCommand{L'8', "south-west view", [](auto& window) { window.ShowFrom(StandardView::SW); }},
        KeyCommand{L'9', "north-east view", [](auto& window) { window.ShowFrom(StandardView::NE); }},
        KeyCommand{L'0', "north-west view", [](auto& window) { window.ShowFrom(StandardView::NW); }},
        KeyCommand{L'f', "fit the model, as it is turned", [](auto& window) { window.FitAgain(); }},
        KeyCommand{L'p', "perspective or parallel projection",
                   [](auto& window) { window.SwitchProjection(); }},
        KeyCommand{L'm', "faces or lines", [](auto& window) { window.SwitchMode(); }},
        KeyCommand{L'e', "edges over faces", [](auto& window) { window.SwitchEdges(); }},
        KeyCommand{L'r', "left button rotates", [](auto& window) { window.Control().RestrictToRotate(); }},
        KeyCommand{L't', "left button pans", [](auto& window) { window.Control().RestrictToPan(); }},
        KeyCommand{L'z', "left button zooms", [](auto& window) { window.Control().RestrictToZoom(); }},
        KeyCommand{L'k', "pressed twice: end navigation with the buttons for good",
                   [](auto& window) { window.EndNavigation(); }},
        KeyCommand{L'h', "reset the zoom", [](auto& window) { window.ResetZoom(); }},
        KeyCommand{L'b', "next background", [](auto& window) { window.NextBackground(); }},
        KeyCommand{L'l', "light from over the shoulder, from the eye, or none",
                   [](auto& window) { window.SwitchLight(); }},
        KeyCommand{L's', "save a picture", [](auto& window) { window.SavePicture(); }},
        KeyCommand{L'?', "print the keys", [](auto& window) { window.PrintKeys(); }},
        KeyCommand{L'q', "quit", [](auto&) { PostQuitMessage(0); }},
    };
    return kCommands;
}

bool InteractiveWindow::RunKeyCommand(wchar_t character)
{
    const auto key = static_cast<wchar_t>(std::towlower(static_cast<std::wint_t>(character)));
    const std::span<const KeyCommand> commands = KeyCommands();
    const auto found = std::ranges::find(commands, key, &KeyCommand::key);
    if (found == commands.end())
        return false;
    Control().MakeCurrent();
    found->run(*this);
    last_key_ = key;
    return true;
}

void InteractiveWindow::PrintKeys()
{
    for (const KeyCommand& command : KeyCommands())
        notices_ << "  " << static_cast<char>(command.key) << "  " << command.meaning << '\n';
    notices_ << std::flush;
}

} // namespace viewer
