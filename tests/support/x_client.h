// Another program on the display: plain windows of its own, and a hand on the pointer and the keyboard. It
// shares nothing with the window layer but the server.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace karv_test
{

class XClient
{
  public:
    using Id = unsigned long;

    /// Throws std::runtime_error where the display does not answer.
    explicit XClient(const std::string& display);
    XClient(const XClient&) = delete;
    XClient& operator=(const XClient&) = delete;
    ~XClient();

    [[nodiscard]] Id Root() const;
    /// A mapped window that takes pointer and key events, known to the server when the call returns. A window
    /// manager does not see one with `is_managed` false.
    Id MakeWindow(int x, int y, int width, int height, Id parent = 0, bool is_managed = false);
    void DestroyWindow(Id window);
    void MoveResize(Id window, int x, int y, int width, int height);
    void Unmap(Id window);
    /// As a window manager's close button does.
    void AskToClose(Id window);
    /// Gives the keyboard focus to the window.
    void Focus(Id window);
    /// Gives it to whichever window the pointer is over.
    void FocusPointer();
    [[nodiscard]] Id Focused();
    /// Until the client itself has been sent this event of X (ButtonPress and so on) `count` times; whether
    /// it was.
    bool HasSeen(int type, int count = 1);

    /// All windows whose name (WM_NAME) is this, at any depth.
    [[nodiscard]] std::vector<Id> FindByName(const std::string& name);
    /// The window manager's frame counts as a parent.
    [[nodiscard]] Id ParentOf(Id window);
    [[nodiscard]] std::vector<Id> ChildrenOf(Id window);
    [[nodiscard]] bool Exists(Id window);
    [[nodiscard]] bool IsSeen(Id window);
    [[nodiscard]] std::pair<int, int> PositionOnScreen(Id window);
    [[nodiscard]] std::pair<int, int> SizeOf(Id window);
    [[nodiscard]] int DepthOf(Id window);
    /// The colour of a pixel of the screen as 0xRRGGBB.
    [[nodiscard]] unsigned ScreenPixel(int x, int y);
    /// The pixels of a part of the screen, row by row from the top, as 0xRRGGBB.
    [[nodiscard]] std::vector<unsigned> Screen(int x, int y, int width, int height);

    /// Each is handled by the server when the call returns. Buttons as X counts them: 1, 2, 3 and the wheel's
    /// 4 and 5.
    void MovePointer(int x, int y);
    void Press(unsigned button);
    void Release(unsigned button);
    void Click(unsigned button);
    /// A key by the name of its symbol, "a" or "Shift_L".
    void PressKey(const char* symbol);
    void ReleaseKey(const char* symbol);

    /// Keeps the server from handling what other programs ask, until it is let go.
    void HoldServer();
    void LetServerGo();
    /// Installs an error handler, does `meanwhile`, and makes a mistake: whether the handler was then called.
    bool TakesItsOwnErrors(const std::function<void()>& meanwhile);

  private:
    class Impl;
    std::unique_ptr<Impl> impl_;
};

} // namespace karv_test
