// The fixture of the tests that watch both sides of the X server: the window layer with its x11 backend, and
// another client on the same display.
#pragma once

#include "platform/winsys/backends.h"
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

    /// Creates a window of a recorded class. Its X window can be found by its title.
    HWND Make(const std::wstring& title, DWORD style, HWND parent, RECT place = {100, 50, 300, 200});
    /// Creates a shown top-level window.
    HWND MakeShown(const std::wstring& title, RECT place = {100, 50, 300, 200});
    /// Creates a shown child, by default at (10, 20) of 80 x 60 pixels.
    HWND MakeChild(HWND parent, RECT place = {10, 20, 90, 80});
    /// Adopts a window of another client; released with the fixture.
    HWND Adopt(XClient::Id id);
    /// Sets the format for 16 depth bits and makes a new context current on the window.
    HGLRC MakeCurrentContext(HWND window);
    /// Draws a frame of one colour, 0 or 1 per channel, and swaps.
    static bool Show(HWND window, float red, float green, float blue);

    /// The X window of the top-level window with this title.
    XClient::Id IdOf(const std::string& title);
    /// The only child of this X window.
    XClient::Id OnlyChildOf(XClient::Id window);

    /// Dispatches the messages that have arrived, without waiting.
    static void PumpArrived();
    /// Waits for messages and dispatches them until the condition is true; returns whether it is within a
    /// minute.
    static bool PumpUntil(const std::function<bool()>& condition);
    /// Waits until the condition is true, without calling the layer; returns whether it is within a minute.
    /// Needed because requests of two programs may reach the server in either order.
    static bool Eventually(const std::function<bool()>& condition);
    /// Waits until this pixel of the screen has the colour, 0xRRGGBB; returns whether it does within a
    /// minute.
    bool ShowsPixel(int x, int y, unsigned color)
    {
        return Eventually([&] { return client_.ScreenPixel(x, y) == color; });
    }
    /// Whether a foreign event loop would find the message descriptor readable now.
    static bool IsDescriptorReadable();

    /// The messages since the last call, without WM_TIMER.
    std::vector<MSG> TakeMessages() { return std::exchange(messages_, {}); }
    /// The messages of one kind since the start or the last `TakeMessages`.
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

    /// Creates a top-level window and waits until the window manager has shown and focused it: title
    /// "managed", a client area of 300 x 200 pixels at (200, 150).
    HWND MakeManaged();

    /// The X window of `MakeManaged`.
    XClient::Id managed_id_ = 0;
    ChildProcess window_manager_{{"env", "DISPLAY=" + SharedXServer().Display(), "openbox", "--sm-disable"}};

  private:
    /// Whether the window manager frames shown windows. While it starts, it announces itself before it does,
    /// and may miss windows shown meanwhile: each try waits for a new window.
    bool IsManaging();
};

} // namespace karv_test
