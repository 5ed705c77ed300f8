// The fixture of the tests that look at the X server from both sides: the window layer with its x11 backend,
// and another program on the same display.
#pragma once

#include "platform/winsys/provider.h"
#include "platform/winsys/winsys.h"
#include "tests/support/child_process.h"
#include "tests/support/x_client.h"
#include "tests/support/x_server.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace karv_test
{

class X11Test : public testing::Test
{
  protected:
    using Size = std::pair<int, int>;

    X11Test();
    ~X11Test() override;

    /// A window of a recorded class at (100, 50) unless given; its X window is found by its title.
    HWND Make(const std::wstring& title, DWORD style, HWND parent, RECT place = {100, 50, 300, 200});
    /// A shown top-level window.
    HWND MakeShown(const std::wstring& title, RECT place = {100, 50, 300, 200});
    /// A shown child at (10, 20) of 80 x 60 pixels unless given.
    HWND MakeChild(HWND parent, RECT place = {10, 20, 90, 80});
    /// The handle of a window of another program; let go with the fixture.
    HWND Adopt(XClient::Id id);
    /// Gives the window the format for 16 depth bits, and a context that is current on it.
    HGLRC MakeCurrentContext(HWND window);
    /// Draws a frame of one colour, 0 or 1 a channel, and swaps.
    static bool Show(HWND window, float red, float green, float blue);

    /// The X window of a top-level window with this title.
    XClient::Id IdOf(const std::string& title);
    /// The only X window in this one.
    XClient::Id OnlyChildOf(XClient::Id window);

    /// Dispatches what has arrived, without waiting.
    static void PumpArrived();
    /// Waits for messages and dispatches them until the condition holds; whether it came to hold in a minute.
    static bool PumpUntil(const std::function<bool()>& condition);
    /// Whether the condition comes to hold in a minute without another call of the layer: what one program
    /// has sent may reach the server after what the other asks.
    static bool Eventually(const std::function<bool()>& condition);
    /// The colour of this pixel of the screen comes to be this one, as 0xRRGGBB.
    bool ShowsPixel(int x, int y, unsigned color)
    {
        return Eventually([&] { return client_.ScreenPixel(x, y) == color; });
    }
    /// Whether a foreign loop would find the message descriptor readable now.
    static bool IsDescriptorReadable();

    /// Messages since the last call, without those that only come with time (WM_TIMER).
    std::vector<MSG> TakeMessages() { return std::exchange(messages_, {}); }
    /// Those of one kind since the start or the last `TakeMessages`.
    [[nodiscard]] std::vector<MSG> MessagesOf(UINT message) const;
    [[nodiscard]] int CountOf(UINT message) const { return static_cast<int>(MessagesOf(message).size()); }
    [[nodiscard]] static Size ClientSizeOf(HWND window);

    XClient client_{SharedXServer().Display()};

  private:
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam);

    static X11Test* running_;
    std::vector<MSG> messages_;
    std::vector<HWND> made_;
    std::vector<HGLRC> contexts_;
};

/// The same under a window manager.
class X11ManagedTest : public X11Test
{
  protected:
    X11ManagedTest();

    /// A top-level window that the window manager has put on the screen and given the focus: "managed", a
    /// client area of 300 x 200 pixels at (200, 150).
    HWND MakeManaged();

    /// The X window of that one.
    XClient::Id managed_id_ = 0;
    ChildProcess window_manager_{{"env", "DISPLAY=" + SharedXServer().Display(), "openbox", "--sm-disable"}};

  private:
    /// Whether a window manager frames what is shown. One that is just starting announces itself before it
    /// does, and may miss what is shown meanwhile, so that each try takes a new window and some patience.
    bool IsManaging();
};

} // namespace karv_test
