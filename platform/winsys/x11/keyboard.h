// Translates key events of X into the key messages of Windows. The virtual key follows the key's position, as
// on a keyboard with Latin letters; the character follows the user's layout.
//
// NOTE: characters composed by an input method do not arrive here: the layer opens no input method.
#pragma once

#include "platform/winsys/winsys.h"

#include <X11/Xlib.h>

namespace winsys::x11
{

struct KeyStroke {
    /// The virtual-key code; VK_PACKET for a key that has a character but no code of its own; 0 for neither.
    WPARAM code = 0;
    /// The character, including the control characters of Ctrl with a letter; 0 for none.
    wchar_t character = 0;
};

[[nodiscard]] KeyStroke ReadKey(XKeyEvent& event);

} // namespace winsys::x11
