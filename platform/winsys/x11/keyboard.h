// Key events of X as the key messages of Windows. The virtual key is the one of the key's place, as a
// keyboard with Latin letters has it; the character is the one that the user's layout gives.
//
// NOTE: Characters that an input method composes do not come here: the layer offers no input method.
#pragma once

#include "platform/winsys/winsys.h"

#include <X11/Xlib.h>

namespace winsys::x11
{

struct KeyStroke {
    /// The virtual-key code, VK_PACKET for a key that has a character but no code of its own; 0 for neither.
    WPARAM code = 0;
    /// The character, control characters of Ctrl with a letter included; 0 for none.
    wchar_t character = 0;
};

[[nodiscard]] KeyStroke ReadKey(XKeyEvent& event);

} // namespace winsys::x11
