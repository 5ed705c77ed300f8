#include "tests/control/windows_control_test.h"

#include "platform/winsys/frame_resolve.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <utility>

namespace karv_test
{
namespace
{

constexpr std::chrono::seconds kLimit{20};
/// Channels of a lit bright colour differ by more than this.
constexpr int kApart = 60;

BOOL CALLBACK NoteTitle(HWND window, LPARAM titles)
{
    std::array<wchar_t, 64> title{};
    GetWindowTextW(window, title.data(), static_cast<int>(title.size()));
    reinterpret_cast<std::vector<std::wstring>*>(titles)->emplace_back(title.data());
    return TRUE;
}

} // namespace

bool IsReddish(const Pixel& pixel)
{
    return pixel.red > pixel.green + kApart && pixel.red > pixel.blue + kApart;
}

bool IsGreenish(const Pixel& pixel)
{
    return pixel.green > pixel.red + kApart && pixel.green > pixel.blue + kApart;
}

void ShowQuad(KARVOpenGLControl& control, unsigned short color)
{
    KARVGLFace quad;
    // Clockwise seen from the front.
    quad.vertices = {{0.0, 0.05, 0.0}, {0.0, 0.05, 0.1}, {0.1, 0.05, 0.1}, {0.1, 0.05, 0.0}};
    quad.normal = {0.0, -1.0, 0.0};
    control.SetBgColor(kBlue.red, kBlue.green, kBlue.blue);
    control.ComputeExtents(false);
    control.AppendGeometry({quad}, KARVGraphicalEntity::EntityType0, color, 1.0F);
    control.OverrideExtents({-0.02, -0.02, -0.02}, {0.12, 0.12, 0.12});
    control.CameraViewFront();
    control.OnDraw(nullptr);
}

std::vector<std::wstring> TopLevelTitles()
{
    std::vector<std::wstring> titles;
    EnumThreadWindows(GetCurrentThreadId(), &NoteTitle, reinterpret_cast<LPARAM>(&titles));
    return titles;
}

Picture ReadLastFrame(HWND window)
{
    RECT rect{};
    GetClientRect(window, &rect);
    const winsys::FrameResolve resolve(static_cast<int>(rect.right), static_cast<int>(rect.bottom));
    return {static_cast<int>(rect.right), static_cast<int>(rect.bottom)};
}

bool RunUntil(const std::function<bool()>& condition, HWND dialog)
{
    const auto limit = std::chrono::steady_clock::now() + kLimit;
    while (!condition() && std::chrono::steady_clock::now() < limit) {
        MSG message{};
        if (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) == FALSE) {
            MsgWaitForMultipleObjects(0, nullptr, FALSE, 100, QS_ALLINPUT);
        } else if (dialog == nullptr || IsDialogMessageW(dialog, &message) == FALSE) {
            TranslateMessage(&message);
            DispatchMessageW(&message);
        }
    }
    return condition();
}

WindowsControl::WindowsControl()
{
    host_.CreateEx(0, AfxRegisterWndClass(0), L"host", WS_POPUP | WS_VISIBLE, CRect(100, 100, 500, 400),
                   nullptr, 0);
    SetForegroundWindow(host_.m_hWnd);
    trace_.Clear();
}

WindowsControl::~WindowsControl()
{
    CWnd::DeleteTempMap();
}

std::unique_ptr<KARVOpenGLControl> WindowsControl::NewControl()
{
    auto control = std::make_unique<KARVOpenGLControl>();
    control->CreateCtrl(CRect(0, 0, kWidth, kHeight), &host_, false);
    return control;
}

std::ptrdiff_t WindowsControl::Calls(const std::string& operation) const
{
    const std::vector<std::string> calls = trace_.Calls();
    return std::count(calls.begin(), calls.end(), "KARVOpenGLControl::" + operation);
}

bool WindowsControl::RunFrames(int frames)
{
    const std::ptrdiff_t before = Calls("OnTimer");
    return RunUntil([&] { return Calls("OnTimer") >= before + frames; });
}

} // namespace karv_test
