// The backends of the window layer, for the suite that every window system must pass.
#include "platform/winsys/backend.h"
#include "platform/winsys/backends.h"
#include "tests/platform/winsys_contract.h"
#include "tests/support/scripted_backend.h"
#include "tests/support/x_server.h"

#include <optional>

#include <poll.h>

namespace karv_test
{

std::vector<std::string> BackendNames()
{
    return {"headless", "scripted", "x11"};
}

void InstallBackend(const std::string& name)
{
    if (name == "scripted")
        ScriptedBackend::Install();
    else if (name == "x11")
        winsys::UseBackend(winsys::MakeX11Backend(SharedXServer().Display()));
    else
        winsys::UseBackend(winsys::MakeHeadlessBackend());
}

bool WaitForMessage()
{
    constexpr int kMinute = 60'000;
    pollfd descriptor{winsys::GetMessageDescriptor(), POLLIN, 0};
    return poll(&descriptor, 1, kMinute) == 1;
}

Picture ReadFrame(HWND window)
{
    std::optional<Picture> picture;
    winsys::SetFrameObserver([&](HWND, int width, int height) { picture.emplace(width, height); });
    EXPECT_TRUE(SwapBuffers(GetDC(window)));
    winsys::SetFrameObserver({});
    return picture.value();
}

void ForgetObservers()
{
    winsys::SetFrameObserver(nullptr);
}

} // namespace karv_test
