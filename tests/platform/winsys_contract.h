// The fixture of the suite that every window system must pass, the system's own and each backend of the
// layer: it records the messages of test windows by name.
#pragma once

#include "platform/winsys/winsys.h"
#include "tests/support/gl_test_window.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace karv_test
{

/// "WM_SIZE", for example; the number for messages without a name here.
[[nodiscard]] std::string MessageName(UINT message);

// What differs between the systems under test.

/// The window systems that this program can run on.
[[nodiscard]] std::vector<std::string> BackendNames();
/// Serves windows by one of these from now on. No window may exist.
void InstallBackend(const std::string& name);
/// Sleeps until a message waits, as a foreign loop does; false where none came in a minute.
[[nodiscard]] bool WaitForMessage();
/// Shows what was drawn on the window with the current context, and returns it.
[[nodiscard]] Picture ReadFrame(HWND window);
/// Undoes what a test has asked of the system beyond its windows.
void ForgetObservers();

class WinsysContract : public testing::TestWithParam<std::string>
{
  public:
    /// What a test does within a message, and its answer; none leaves the message to DefWindowProcW.
    using Handler = std::function<std::optional<LRESULT>(HWND window, UINT message, WPARAM, LPARAM)>;

    ~WinsysContract() override;

  protected:
    WinsysContract();

    /// A window of a recorded class; "a" is its name in the record. Child windows are made with WS_CHILD; the
    /// others are top-level ones without a frame, which not every system could leave out otherwise.
    HWND Make(const std::wstring& name, DWORD style = WS_POPUP, HWND parent = nullptr, int width = 64,
              int height = 64);
    /// A shown top-level window whose messages so far are forgotten and whose picture is valid.
    HWND MakeShown(const std::wstring& name);
    /// A window's device context with the format for 16 depth bits.
    static HDC PrepareDc(HWND window);

    /// The messages since the last call, as "name WM_...", those of every recorded window. A system sends
    /// more than the layer has names for; they are left out.
    /// So are erasures and changes of the focus, which come when it suits the system; each kind is for the
    /// tests that are about it.
    std::vector<std::string> TakeMessages();
    std::vector<std::string> TakeFocusMessages();
    std::vector<std::string> TakeErasures();
    /// Dispatches waiting messages until none is left, at most `limit` of them; how many there were.
    static int Pump(int limit = 1000);
    /// Waits for messages and dispatches them until the condition holds, at most `limit` of them; whether it
    /// came to hold.
    static bool PumpUntil(const std::function<bool()>& condition, int limit = 10000);
    /// The next message, taken out; a message of number 0 where none waits.
    static MSG Take(HWND window = nullptr, UINT first = 0, UINT last = 0);

    Handler handler_;

  private:
    /// Those of the messages since the last call, of whatever kind, whose names pass; the others are
    /// forgotten.
    std::vector<std::string> TakeThose(const std::function<bool(const std::string& name)>& pass);
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam);

    static WinsysContract* running_;
    std::vector<std::string> messages_;
    std::vector<HWND> made_;
    std::vector<std::pair<HWND, std::string>> names_;
};

/// The same with rendering contexts, which end with the test.
class GraphicsContract : public WinsysContract
{
  public:
    ~GraphicsContract() override;

  protected:
    static constexpr Pixel kRed{255, 0, 0};
    static constexpr Pixel kGreen{0, 255, 0};

    HGLRC MakeContext(HDC dc);
    /// A shown window with its context current on it.
    HWND MakeDrawable(const std::wstring& name);
    /// A function of the window system's own; null where wglGetProcAddress has none.
    template <typename Function>
    static Function Look(const char* name)
    {
        return reinterpret_cast<Function>(reinterpret_cast<void (*)()>(wglGetProcAddress(name)));
    }
    static void Clear(float red, float green, float blue);
    /// The best format for these attributes on any window, 0 for none; `success` is what the call returned.
    static int Choose(HDC dc, const std::vector<int>& attributes, BOOL* success = nullptr);

  private:
    std::vector<HGLRC> contexts_;
};

/// Every system that the suite runs on.
inline auto EveryBackend()
{
    return testing::ValuesIn(BackendNames());
}

/// Names each instance of a test after its backend.
inline std::string BackendTestName(const testing::TestParamInfo<std::string>& info)
{
    return info.param;
}

} // namespace karv_test
