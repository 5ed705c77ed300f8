// A script in place of a user: each line presses a control of the dialog, uses the mouse in the viewport or
// takes a picture. It reaches the dialog by window messages alone, as a user does.
//
//   press CAPTION                    a button, radio button or check box, by its caption
//   opacity PERCENT                  drags the slider there and lets it go
//   background RED GREEN BLUE        presses "Background...", fills in the colours (0 to 255) and presses OK
//   open FILE                        presses "Open...", fills in the name and presses the button to open it
//   drag left|middle|right X Y X Y   drags from one point of the viewport to another, in pixels from its top
//   left wheel NOTCHES                    turns the wheel over the viewport, forward where positive resize
//   WIDTH HEIGHT              gives the dialog a client area of this size in pixels picture FILE writes the
//   next frame as a bitmap
//
// Empty lines and lines that begin with # are passed over. Files are named from the working directory.
#pragma once

#include "viewer/apps/win32-dialog/dialog.h"

#include <filesystem>
#include <string>
#include <vector>

namespace win32_dialog
{

/// A line of a script.
struct ScriptCommand {
    int line = 0; ///< from 1
    std::string verb;
    std::wstring text;
    std::vector<int> numbers;
};

/// Reads a script. Throws viewer::FileError where the file cannot be read, and std::runtime_error with one
/// line, "FILE:LINE: reason", where a line is no command.
[[nodiscard]] std::vector<ScriptCommand> ReadScript(const std::filesystem::path& file);

/// Does what a script says. Throws std::runtime_error with one line, "FILE:LINE: reason", where it cannot be
/// done; what the lines before did stays done.
void PlayScript(const std::filesystem::path& file, const std::vector<ScriptCommand>& commands,
                ViewerDialog& dialog);

} // namespace win32_dialog
