// A script in place of a user. Each line presses a control of the dialog, moves the mouse in the viewport or
// takes a picture. All but pictures goes through window messages, as a user's input does.
//
//   press CAPTION                    presses the button, radio button or check box with this caption
//   opacity PERCENT                  moves the opacity slider there and releases it
//   background RED GREEN BLUE        presses "Background...", enters a colour (0 to 255 each), presses OK
//   open FILE                        presses "Open...", enters the file name and confirms
//   drag left|middle|right X Y X Y   drags between two points of the viewport, in pixels from its top left
//   wheel NOTCHES                    turns the wheel over the viewport; positive is forward
//   resize WIDTH HEIGHT              gives the dialog a client area of this size, in pixels
//   picture FILE                     writes the next frame as a bitmap
//
// Empty lines and lines that begin with # are ignored. Relative file names refer to the working folder.
#pragma once

#include "viewer/apps/win32-dialog/dialog.h"
#include "viewer/apps/win32-dialog/script_command.h"

#include <filesystem>
#include <vector>

namespace win32_dialog
{

/// Reads a script. Throws viewer::FileError where the file cannot be read, and std::runtime_error with the
/// text "FILE:LINE: reason", in one line, where a line is not a command.
[[nodiscard]] std::vector<ScriptCommand> ReadScript(const std::filesystem::path& file);

/// Carries out the commands of a script; `file` is named in errors. Throws std::runtime_error with the text
/// "FILE:LINE: reason", in one line, at the first command that fails; the effects of those before remain.
void PlayScript(const std::filesystem::path& file, const std::vector<ScriptCommand>& commands,
                ViewerDialog& dialog);

} // namespace win32_dialog
