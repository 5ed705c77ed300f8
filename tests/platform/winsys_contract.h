// The fixture of the suite that every window system must pass: it installs one backend after another, and
// records the messages of test windows by name.
#pragma once

#include "platform/winsys/provider.h"
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

/// Installs a backend by its name.
void InstallBackend(const std::string& name);

class WinsysContract : public testing::TestWithParam<std::string>
{
  public:
    /// What a test does within a message, and its answer; none leaves the message to DefWindowProcW.
    using Handler = std::function<std::optional<LRESULT>(HWND window, UINT message, WPARAM, LPARAM)>;

    ~WinsysContract() override;

  protected:
    WinsysContract();

    /// A window of a recorded class; "a" is its name in the record. Child windows are made with WS_CHILD.
    HWND Make(const std::wstring& name, DWORD style = WS_OVERLAPPED, HWND parent = nullptr, int width = 64,
              int height = 64);
    /// A shown top-level window whose messages so far are forgotten and whose picture is valid.
    HWND MakeShown(const std::wstring& name);
    /// A window's device context with the format for 16 depth bits.
    static HDC PrepareDc(HWND window);

    /// The messages since the last call, as "name WM_...", those of every recorded window.
    std::vector<std::string> TakeMessages();
    /// Dispatches waiting messages until none is left, at most `limit` of them; how many there were.
    static int Pump(int limit = 1000);
    /// Waits for messages and dispatches them until the condition holds, at most `limit` of them; whether it
    /// came to hold.
    static bool PumpUntil(const std::function<bool()>& condition, int limit = 10000);
    /// The next message, taken out; a message of number 0 where none waits.
    static MSG Take(HWND window = nullptr, UINT first = 0, UINT last = 0);
    /// Whether a foreign loop would find the message descriptor readable now.
    static bool IsDescriptorReadable();
    /// Waits as a foreign loop does; false where nothing came in a minute.
    static bool WaitForDescriptor();

    Handler handler_;

  private:
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam);

    static WinsysContract* running_;
    std::vector<std::string> messages_;
    std::vector<HWND> made_;
    std::vector<std::pair<HWND, std::string>> names_;
};

/// Every backend that the suite runs on.
inline auto EveryBackend()
{
    return testing::Values("headless", "scripted", "x11");
}

/// Names each instance of a test after its backend.
inline std::string BackendTestName(const testing::TestParamInfo<std::string>& info)
{
    return info.param;
}

} // namespace karv_test
