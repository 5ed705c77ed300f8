// The fixture of the suite that every window system must pass: the system's own and each backend of the
// layer. It records the messages of test windows by name.
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

/// "WM_SIZE", for example; the number of a message without a name here.
[[nodiscard]] std::string MessageName(UINT message);

// Implemented once for each system under test.

/// The window systems that this program can run on.
[[nodiscard]] std::vector<std::string> BackendNames();
/// Makes this one the window system from now on. No window may exist.
void InstallBackend(const std::string& name);
/// Sleeps until a message is waiting, as a foreign event loop does; false if none came in a minute.
[[nodiscard]] bool WaitForMessage();
/// Shows what the current context drew on the window, and returns it.
[[nodiscard]] Picture ReadFrame(HWND window);
/// Removes the observers that a test has installed.
void ForgetObservers();

class WinsysContract : public testing::TestWithParam<std::string>
{
  public:
    /// A test's answer to a message; none passes the message to DefWindowProcW.
    using Handler = std::function<std::optional<LRESULT>(HWND window, UINT message, WPARAM, LPARAM)>;

    ~WinsysContract() override;

  protected:
    WinsysContract();

    /// Creates a window of a recorded class; `name` is its name in the record. Child windows need WS_CHILD.
    /// Other windows are top-level ones without a frame, because frames differ between systems.
    HWND Make(const std::wstring& name, DWORD style = WS_POPUP, HWND parent = nullptr, int width = 64,
              int height = 64);
    /// Creates a shown top-level window, drops its messages so far and validates it.
    HWND MakeShown(const std::wstring& name);
    /// Returns a window's device context, after setting the format for 16 depth bits.
    static HDC PrepareDc(HWND window);

    /// The messages of all recorded windows since the last call, as "name WM_...". Left out: messages without
    /// a name here, which depend on the system, and erasures and focus changes, whose time depends on the
    /// system; the next two functions return those.
    std::vector<std::string> TakeMessages();
    std::vector<std::string> TakeFocusMessages();
    std::vector<std::string> TakeErasures();
    /// Dispatches waiting messages until there are none, at most `limit` of them; returns their number.
    static int Pump(int limit = 1000);
    /// Waits for messages and dispatches them, at most `limit` of them, until the condition is true; returns
    /// whether it is.
    static bool PumpUntil(const std::function<bool()>& condition, int limit = 10000);
    /// Removes and returns the next message; message number 0 if none is waiting.
    static MSG Take(HWND window = nullptr, UINT first = 0, UINT last = 0);

    Handler handler_;

  private:
    /// The messages since the last call whose names pass; drops the others.
    std::vector<std::string> TakeThose(const std::function<bool(const std::string& name)>& pass);
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam);

    static WinsysContract* running_;
    std::vector<std::string> messages_;
    std::vector<HWND> made_;
    std::vector<std::pair<HWND, std::string>> names_;
};

/// The same with rendering contexts, which are deleted at the end of the test.
class GraphicsContract : public WinsysContract
{
  public:
    ~GraphicsContract() override;

  protected:
    static constexpr Pixel kRed{255, 0, 0};
    static constexpr Pixel kGreen{0, 255, 0};

    HGLRC MakeContext(HDC dc);
    /// Creates a shown window with a current context.
    HWND MakeDrawable(const std::wstring& name);
    /// Returns an extension function of the window system; null if wglGetProcAddress has none.
    template <typename Function>
    static Function Look(const char* name)
    {
        return reinterpret_cast<Function>(reinterpret_cast<void (*)()>(wglGetProcAddress(name)));
    }
    static void Clear(float red, float green, float blue);
    /// Returns the best format for these attributes on any window, 0 for none; `success` receives the result
    /// of the call.
    static int Choose(HDC dc, const std::vector<int>& attributes, BOOL* success = nullptr);

  private:
    std::vector<HGLRC> contexts_;
};

/// All window systems that the suite runs on.
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
