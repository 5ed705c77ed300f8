// Another client on the display, with plain windows of its own, that also generates pointer and key events.
// It shares only the server with the window layer.
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

    /// Throws std::runtime_error if the display does not answer.
    explicit XClient(const std::string& display);
    XClient(const XClient&) = delete;
    XClient& operator=(const XClient&) = delete;
    ~XClient();

    [[nodiscard]] Id Root() const;
    /// Creates a mapped window that selects pointer and key events; it exists on the server when the call
    /// returns. A window manager ignores it if `is_managed` is false.
    Id MakeWindow(int x, int y, int width, int height, Id parent = 0, bool is_managed = false);
    void DestroyWindow(Id window);
    void MoveResize(Id window, int x, int y, int width, int height);
    void Unmap(Id window);
    /// Sends the message of a window manager's close button.
    void AskToClose(Id window);
    /// Sets the keyboard focus to the window.
    void Focus(Id window);
    /// Sets the focus mode in which keys go to the window under the pointer.
    void FocusPointer();
    [[nodiscard]] Id Focused();
    /// Whether the server has sent the client at least `count` events of this X type (ButtonPress and so on).
    bool HasSeen(int type, int count = 1);

    /// All windows with this name (WM_NAME), at any depth.
    [[nodiscard]] std::vector<Id> FindByName(const std::string& name);
    /// Both texts of WM_CLASS: the program's name and its class.
    [[nodiscard]] std::pair<std::string, std::string> ClassOf(Id window);
    /// The numbers of a property of 32-bit numbers, empty where there is none.
    [[nodiscard]] std::vector<unsigned long> NumbersOf(Id window, const char* property);
    /// A window manager's frame counts as a parent.
    [[nodiscard]] Id ParentOf(Id window);
    [[nodiscard]] std::vector<Id> ChildrenOf(Id window);
    [[nodiscard]] bool Exists(Id window);
    [[nodiscard]] bool IsSeen(Id window);
    [[nodiscard]] std::pair<int, int> PositionOnScreen(Id window);
    [[nodiscard]] std::pair<int, int> SizeOf(Id window);
    [[nodiscard]] int DepthOf(Id window);
    /// The colour of a pixel of the screen, 0xRRGGBB.
    [[nodiscard]] unsigned ScreenPixel(int x, int y);
    /// The pixels of a part of the screen, row by row from the top, 0xRRGGBB each.
    [[nodiscard]] std::vector<unsigned> Screen(int x, int y, int width, int height);

    /// The server has handled each of these when the call returns. Buttons have the numbers of X: 1, 2, 3,
    /// and 4 and 5 for the wheel.
    void MovePointer(int x, int y);
    void Press(unsigned button);
    void Release(unsigned button);
    void Click(unsigned button);
    /// `symbol` is the name of the key's symbol, "a" or "Shift_L".
    void PressKey(const char* symbol);
    void ReleaseKey(const char* symbol);

    /// Stops the server from handling requests of other clients until `LetServerGo`.
    void HoldServer();
    void LetServerGo();
    /// Installs an error handler, calls `meanwhile`, and makes a request that fails; returns whether the
    /// handler was called.
    bool TakesItsOwnErrors(const std::function<void()>& meanwhile);

  private:
    class Impl;
    std::unique_ptr<Impl> impl_;
};

} // namespace karv_test
