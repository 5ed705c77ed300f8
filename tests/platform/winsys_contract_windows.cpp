// The windows of the system itself, for the suite that every window system must pass.
#include "platform/winsys/frame_resolve.h"
#include "tests/platform/winsys_contract.h"

namespace karv_test
{

std::vector<std::string> BackendNames()
{
    return {"windows"};
}

void InstallBackend(const std::string& /*name*/) {}

bool WaitForMessage()
{
    constexpr DWORD kMinute = 60'000;
    return MsgWaitForMultipleObjects(0, nullptr, FALSE, kMinute, QS_ALLINPUT) == WAIT_OBJECT_0;
}

Picture ReadFrame(HWND window)
{
    RECT rect{};
    GetClientRect(window, &rect);
    const auto width = static_cast<int>(rect.right);
    const auto height = static_cast<int>(rect.bottom);
    const Picture picture = [&] {
        const winsys::FrameResolve resolve(width, height);
        return Picture(width, height);
    }();
    EXPECT_TRUE(SwapBuffers(GetDC(window)));
    return picture;
}

void ForgetObservers() {}

} // namespace karv_test
