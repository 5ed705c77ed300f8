#include "platform/framework/window_classes.h"

#include <memory>

WindowClasses& TheWindowClasses()
{
    static WindowClasses* const classes = std::make_unique<WindowClasses>().release();
    return *classes;
}

void FollowWindow(HWND window, UINT message)
{
    if (message == WM_NCCREATE)
        TheWindowClasses().windows.insert(window);
    else if (message == WM_NCDESTROY)
        TheWindowClasses().windows.erase(window);
}
