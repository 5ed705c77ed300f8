// What this copy of the library has registered with the window system: classes, and their windows.
//
// Classes and windows belong to the process. On Windows they may outlive the library, and another copy of it
// may be loaded meanwhile or afterwards, which uses the same class names. For the thread that owns the
// windows.
#pragma once

#include "platform/winsys/winsys.h"

#include <set>
#include <string>

struct WindowClasses {
    std::set<std::wstring> names; ///< none is removed, so that they stay valid
    std::set<HWND> windows;       ///< all windows for which AfxWndProc was called and that it saw no end of
};

/// Never destroyed: windows may outlive this library's static objects, and names its code.
WindowClasses& TheWindowClasses();

/// Adds or removes the window at the messages that begin and end its life.
void FollowWindow(HWND window, UINT message);
