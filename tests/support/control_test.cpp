#include "tests/support/control_test.h"

#include "platform/host/gs/manager.h"
#include "platform/winsys/backends.h"
#include "platform/winsys/frame_clock.h"

#include <chrono>
#include <utility>

namespace karv_test
{
namespace
{

constexpr int kHostSide = 512;
constexpr std::chrono::seconds kPumpLimit{10};

} // namespace

KARVGLFace MakeFace(std::vector<KARVGLVertex> corners, KARVGLVertex normal)
{
    KARVGLFace face;
    face.vertices = std::move(corners);
    face.normal = normal;
    return face;
}

std::vector<KARVGLFace> TriangleInBox(KARVGLVertex a, KARVGLVertex b)
{
    return {MakeFace({a, {b.x, a.y, a.z}, b}, {0.0, -1.0, 0.0})};
}

ControlTest::ControlTest()
{
    UseTestWindows();
    winsys::SetFrameClock([this] { return now_; });
    host_.CreateEx(0, AfxRegisterWndClass(0), L"host", WS_POPUP | WS_VISIBLE,
                   CRect(0, 0, kHostSide, kHostSide), nullptr, 0);
    window_calls_.Clear();
}

ControlTest::~ControlTest()
{
    winsys::SetFrameClock({});
    SetHostBackgroundColor(kDefaultHostBackground);
}

void ControlTest::TearDown()
{
    if (HasFailure() && last_picture_) {
        const testing::TestInfo& test = *testing::UnitTest::GetInstance()->current_test_info();
        last_picture_->Write(testing::TempDir() + test.test_suite_name() + "." + test.name() + ".ppm");
    }
    ::wglMakeCurrent(nullptr, nullptr);
    for (const HGLRC context : window_calls_.Contexts())
        ::wglDeleteContext(context);
    for (const WindowCreation& creation : window_calls_.Creations())
        if (::IsWindow(creation.window))
            ::DestroyWindow(creation.window);
}

std::unique_ptr<KARVOpenGLControl> ControlTest::NewControl(bool transparent, int width, int height)
{
    auto control = std::make_unique<KARVOpenGLControl>();
    control->CreateCtrl(CRect(0, 0, width, height), &host_, transparent);
    return control;
}

Picture ControlTest::Frame(KARVOpenGLControl& control)
{
    std::optional<Picture> picture;
    winsys::SetFrameObserver([&](HWND, int width, int height) { picture.emplace(width, height); });
    control.OnTimer(1);
    winsys::SetFrameObserver({});
    last_picture_ = picture;
    return picture.value();
}

bool ControlTest::PumpUntil(const std::function<bool()>& condition)
{
    const auto limit = std::chrono::steady_clock::now() + kPumpLimit;
    while (!condition() && std::chrono::steady_clock::now() < limit) {
        MSG message{};
        if (::PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE))
            ::DispatchMessageW(&message);
    }
    return condition();
}

void ControlTest::PumpPending()
{
    MSG message{};
    while (::PeekMessageW(&message, nullptr, 0, WM_TIMER - 1, PM_REMOVE))
        ::DispatchMessageW(&message);
}

} // namespace karv_test
