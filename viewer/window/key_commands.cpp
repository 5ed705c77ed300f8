#include "viewer/window/key_commands.h"

#include "viewer/window/interactive_window.h"

#include <algorithm>
#include <array>
#include <cwctype>

namespace viewer
{

namespace
{

template <StandardView kView>
void ShowFrom(InteractiveWindow& window)
{
    window.ShowFrom(kView);
}

// Without captures, so that the table is a constant.
constexpr std::array kCommands = {
    KeyCommand{L'1', "front view", ShowFrom<StandardView::Front>},
    KeyCommand{L'2', "back view", ShowFrom<StandardView::Back>},
    KeyCommand{L'3', "left view", ShowFrom<StandardView::Left>},
    KeyCommand{L'4', "right view", ShowFrom<StandardView::Right>},
    KeyCommand{L'5', "top view", ShowFrom<StandardView::Top>},
    KeyCommand{L'6', "bottom view", ShowFrom<StandardView::Bottom>},
    KeyCommand{L'7', "south-east view", ShowFrom<StandardView::SE>},
    KeyCommand{L'8', "south-west view", ShowFrom<StandardView::SW>},
    KeyCommand{L'9', "north-east view", ShowFrom<StandardView::NE>},
    KeyCommand{L'0', "north-west view", ShowFrom<StandardView::NW>},
    KeyCommand{L'p', "perspective or parallel projection", [](auto& window) { window.SwitchProjection(); }},
    KeyCommand{L'm', "faces or lines", [](auto& window) { window.SwitchMode(); }},
    KeyCommand{L'r', "left button rotates", [](auto& window) { window.Control().RestrictToRotate(); }},
    KeyCommand{L't', "left button pans", [](auto& window) { window.Control().RestrictToPan(); }},
    KeyCommand{L'z', "left button zooms", [](auto& window) { window.Control().RestrictToZoom(); }},
    KeyCommand{L'k', "end navigation with the buttons",
               [](auto& window) { window.Control().KillUserControl(); }},
    KeyCommand{L'h', "reset the zoom", [](auto& window) { window.ResetZoom(); }},
    KeyCommand{L'b', "next background", [](auto& window) { window.NextBackground(); }},
    KeyCommand{L'l', "lights off or on", [](auto& window) { window.SwitchLights(); }},
    KeyCommand{L's', "save a picture", [](auto& window) { window.SavePicture(); }},
    KeyCommand{L'?', "print the keys", [](auto& window) { window.PrintKeys(); }},
    KeyCommand{L'q', "quit", [](auto&) { PostQuitMessage(0); }},
};

} // namespace

std::span<const KeyCommand> KeyCommands()
{
    return kCommands;
}

bool RunKeyCommand(wchar_t character, InteractiveWindow& window)
{
    const auto key = static_cast<wchar_t>(std::towlower(static_cast<std::wint_t>(character)));
    const auto* const found = std::ranges::find(kCommands, key, &KeyCommand::key);
    if (found == kCommands.end())
        return false;
    window.Control().MakeCurrent();
    found->run(window);
    return true;
}

std::string KeyHelp()
{
    std::string help;
    for (const KeyCommand& command : kCommands)
        help +=
            std::string("  ") + static_cast<char>(command.key) + "  " + std::string(command.meaning) + '\n';
    return help;
}

} // namespace viewer
