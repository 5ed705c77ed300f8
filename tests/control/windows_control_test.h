// The fixture of the control's tests on the system's own windows: a host window, controls in it, a real
// message loop, and frames read back.
#pragma once

#include "control/KARVOpenGLControl.h"
#include "tests/support/gl_test_window.h"
#include "tests/support/trace_recording.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace karv_test
{

inline constexpr Pixel kBlue{0, 0, 255};
inline constexpr unsigned short kRedIndex = 1;
inline constexpr unsigned short kGreenIndex = 3;

/// Whether the red channel stands out, under any lighting.
[[nodiscard]] bool IsReddish(const Pixel& pixel);
[[nodiscard]] bool IsGreenish(const Pixel& pixel);

/// Shows a quad of this colour in the middle of a blue view, seen from the front. The control's context must
/// be current.
void ShowQuad(KARVOpenGLControl& control, unsigned short color);

/// The titles of the thread's top-level windows, hidden ones included.
[[nodiscard]] std::vector<std::wstring> TopLevelTitles();

/// Reads the window's last frame from the current context.
[[nodiscard]] Picture ReadLastFrame(HWND window);

/// Runs the message loop until the condition holds; false if it does not within some seconds. With a
/// `dialog`, its keyboard messages are handled as a dialog's.
bool RunUntil(const std::function<bool()>& condition, HWND dialog = nullptr);

class WindowsControl : public testing::Test
{
  protected:
    static constexpr int kWidth = 200;
    static constexpr int kHeight = 100;

    WindowsControl();
    ~WindowsControl() override;

    /// A control at (0, 0) in the host.
    std::unique_ptr<KARVOpenGLControl> NewControl();
    /// How often an operation was called since the recording began. Its name is given without the class.
    [[nodiscard]] std::ptrdiff_t Calls(const std::string& operation) const;
    /// Runs the loop until the control has drawn this many more frames.
    bool RunFrames(int frames);

    CWnd host_;
    TraceRecording trace_;
};

} // namespace karv_test
