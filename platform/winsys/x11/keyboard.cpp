#include "platform/winsys/x11/keyboard.h"

#include <algorithm>
#include <array>

#include <X11/XKBlib.h>
#include <X11/Xutil.h>
#include <X11/keysym.h>

namespace winsys::x11
{
namespace
{

/// VK_PACKET: a character without a key code.
constexpr WPARAM kVkPacket = 0xE7;
/// Keysyms from this one on are characters, with the code point in the lower 24 bits.
constexpr KeySym kUnicodeBase = 0x01000000;

struct NamedKey {
    KeySym symbol;
    WPARAM code;
};

/// Virtual-key codes of Windows for named keys.
constexpr std::array kNamedKeys{
    NamedKey{XK_BackSpace, 0x08}, NamedKey{XK_Tab, 0x09},         NamedKey{XK_ISO_Left_Tab, 0x09},
    NamedKey{XK_Return, 0x0D},    NamedKey{XK_KP_Enter, 0x0D},    NamedKey{XK_Shift_L, 0x10},
    NamedKey{XK_Shift_R, 0x10},   NamedKey{XK_Control_L, 0x11},   NamedKey{XK_Control_R, 0x11},
    NamedKey{XK_Alt_L, 0x12},     NamedKey{XK_Alt_R, 0x12},       NamedKey{XK_Pause, 0x13},
    NamedKey{XK_Caps_Lock, 0x14}, NamedKey{XK_Escape, 0x1B},      NamedKey{XK_space, 0x20},
    NamedKey{XK_Page_Up, 0x21},   NamedKey{XK_Page_Down, 0x22},   NamedKey{XK_End, 0x23},
    NamedKey{XK_Home, 0x24},      NamedKey{XK_Left, 0x25},        NamedKey{XK_Up, 0x26},
    NamedKey{XK_Right, 0x27},     NamedKey{XK_Down, 0x28},        NamedKey{XK_Insert, 0x2D},
    NamedKey{XK_Delete, 0x2E},    NamedKey{XK_KP_Page_Up, 0x21},  NamedKey{XK_KP_Page_Down, 0x22},
    NamedKey{XK_KP_End, 0x23},    NamedKey{XK_KP_Home, 0x24},     NamedKey{XK_KP_Left, 0x25},
    NamedKey{XK_KP_Up, 0x26},     NamedKey{XK_KP_Right, 0x27},    NamedKey{XK_KP_Down, 0x28},
    NamedKey{XK_KP_Insert, 0x2D}, NamedKey{XK_KP_Delete, 0x2E},   NamedKey{XK_KP_Multiply, 0x6A},
    NamedKey{XK_KP_Add, 0x6B},    NamedKey{XK_KP_Subtract, 0x6D}, NamedKey{XK_KP_Decimal, 0x6E},
    NamedKey{XK_KP_Divide, 0x6F}, NamedKey{XK_plus, 0xBB},        NamedKey{XK_equal, 0xBB},
    NamedKey{XK_comma, 0xBC},     NamedKey{XK_minus, 0xBD},       NamedKey{XK_period, 0xBE},
};

/// 0 if the symbol has no virtual key.
WPARAM CodeOfSymbol(KeySym symbol)
{
    if (symbol >= XK_a && symbol <= XK_z)
        return 'A' + (symbol - XK_a);
    if ((symbol >= XK_0 && symbol <= XK_9) || (symbol >= XK_A && symbol <= XK_Z))
        return symbol;
    if (symbol >= XK_F1 && symbol <= XK_F24)
        return 0x70 + (symbol - XK_F1);
    if (symbol >= XK_KP_0 && symbol <= XK_KP_9)
        return 0x60 + (symbol - XK_KP_0);
    const auto* const named = std::ranges::find(kNamedKeys, symbol, &NamedKey::symbol);
    return named != kNamedKeys.end() ? named->code : 0;
}

/// The virtual key of the unshifted symbol, in the first of the user's layouts whose symbol has one.
WPARAM CodeOfKeyPosition(const XKeyEvent& event)
{
    constexpr int kLayouts = 4;
    WPARAM code = 0;
    for (int layout = 0; layout < kLayouts && code == 0; ++layout) {
        code =
            CodeOfSymbol(XkbKeycodeToKeysym(event.display, static_cast<KeyCode>(event.keycode), layout, 0));
    }
    return code;
}

} // namespace

KeyStroke ReadKey(XKeyEvent& event)
{
    std::array<char, 8> latin{};
    KeySym symbol = NoSymbol;
    const int length = XLookupString(&event, latin.data(), static_cast<int>(latin.size()), &symbol, nullptr);
    KeyStroke stroke;
    if (length == 1)
        stroke.character = static_cast<wchar_t>(static_cast<unsigned char>(latin.front()));
    else if (symbol >= kUnicodeBase)
        stroke.character = static_cast<wchar_t>(symbol - kUnicodeBase);
    // The keypad's digits depend on Num Lock, which the symbol already includes.
    const bool is_pad_digit = symbol >= XK_KP_0 && symbol <= XK_KP_9;
    stroke.code = is_pad_digit ? CodeOfSymbol(symbol) : CodeOfKeyPosition(event);
    if (stroke.code == 0 && stroke.character != 0)
        stroke.code = kVkPacket;
    if (symbol == XK_Delete || symbol == XK_KP_Delete) {
        // X gives the Delete key a character, Windows does not.
        stroke.character = 0;
    }
    return stroke;
}

} // namespace winsys::x11
