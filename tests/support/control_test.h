// The fixture of the control's tests: a host window, controls in it, scenes, messages, and frames read back.
// Windows are off-screen; contexts and their drawing are real.
#pragma once

#include "control/KARVOpenGLControl.h"
#include "tests/support/control_window_calls.h"
#include "tests/support/gl_recorder.h"
#include "tests/support/gl_test_window.h"
#include "tests/support/trace_recording.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ctime>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace karv_test
{

using EntityType = KARVGraphicalEntity::EntityType;

/// A category by its number; any 32-bit value is allowed.
[[nodiscard]] constexpr EntityType TypeOf(int value)
{
    return static_cast<EntityType>(value);
}

/// A face of these corners.
[[nodiscard]] KARVGLFace MakeFace(std::vector<KARVGLVertex> corners, KARVGLVertex normal);
/// One triangle whose box has these corners: (a.x, a.y, a.z), (b.x, a.y, a.z), (b.x, b.y, b.z).
[[nodiscard]] std::vector<KARVGLFace> TriangleInBox(KARVGLVertex a, KARVGLVertex b);

class ControlTest : public testing::Test
{
  protected:
    static constexpr int kWidth = 64;
    static constexpr int kHeight = 32;

    /// Opens the host window, which is larger than any control in it. The frame clock does not advance.
    ControlTest();
    ~ControlTest() override;
    /// Writes the last picture to the test's temporary folder if the test failed, and destroys the windows
    /// and contexts that the test or the control left.
    void TearDown() override;

    /// A control at (0, 0) in the host, of kWidth x kHeight by default.
    std::unique_ptr<KARVOpenGLControl> NewControl(bool transparent = false, int width = kWidth,
                                                  int height = kHeight);
    /// Draws one frame of the control and reads it before the buffer swap.
    Picture Frame(KARVOpenGLControl& control);
    /// Dispatches messages until the condition holds; false if it does not within a limit.
    static bool PumpUntil(const std::function<bool()>& condition);
    /// Dispatches the messages in the queue, except timer messages.
    static void PumpPending();

    CWnd host_;
    WindowCalls window_calls_;
    std::clock_t now_ = 0; ///< the time of the frame clock, in ms

  private:
    std::optional<Picture> last_picture_;
};

} // namespace karv_test
