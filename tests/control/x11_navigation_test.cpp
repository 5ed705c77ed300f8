// The viewport in a real window under a window manager, driven by another program's pointer and checked on
// the screen.
//
// The scene is the cube from 0.05 to 0.15 in a box from 0 to 0.2, seen from the front. The eye is one scene
// size, 1.2 times the diagonal of 0.34641, so 0.41569, from the centre. The viewport is 200 pixels high; half
// of that is 0.41569 x tan 20 degrees = 0.1513 at the distance of the centre.
#include "control/KARVOpenGLControl.h"
#include "platform/winsys/backend.h"
#include "tests/control/shared_constants.h"
#include "tests/support/x11_test.h"

#include <algorithm>
#include <cmath>

namespace karv_test
{
namespace
{

constexpr int kWidth = 300;
constexpr int kHeight = 200;

/// The pixels of one colour: their number and their middle.
struct Blob {
    int count = 0;
    double x = 0;
    double y = 0;
};

} // namespace

class X11Navigation : public X11ManagedTest
{
  protected:
    X11Navigation()
    {
        const HWND host = MakeManaged();
        control_.CreateCtrl(CRect(0, 0, kWidth, kHeight), CWnd::FromHandle(host), false);
        control_.SetBgColor(0, 0, 0);
        control_.ComputeExtents(false);
        control_.OverrideExtents({0.0, 0.0, 0.0}, {0.2, 0.2, 0.2});
        constexpr double kLow = 0.05;
        constexpr double kHigh = 0.15;
        // The front and the left side, clockwise seen from outside.
        Append({{kLow, kLow, kLow}, {kLow, kLow, kHigh}, {kHigh, kLow, kHigh}, {kHigh, kLow, kLow}},
               {0.0, -1.0, 0.0}, kGreen);
        Append({{kLow, kHigh, kLow}, {kLow, kHigh, kHigh}, {kLow, kLow, kHigh}, {kLow, kLow, kLow}},
               {-1.0, 0.0, 0.0}, kBlue);
        control_.CameraViewFront();
        control_.OnDraw(nullptr);
        origin_ = client_.PositionOnScreen(managed_id_);
        client_.MovePointer(origin_.first + kWidth / 2, origin_.second + kHeight / 2);
        EXPECT_TRUE(PumpFrames([&] { return Green().count > 0; }));
        first_ = Green();
    }

    ~X11Navigation() override { CWnd::DeleteTempMap(); }

    void Append(const std::vector<KARVGLVertex>& corners, KARVGLVertex normal, unsigned short color)
    {
        KARVGLFace face;
        face.vertices = corners;
        face.normal = normal;
        control_.AppendGeometry({face}, static_cast<KARVGraphicalEntity::EntityType>(0), color, 1.0F);
    }

    /// Dispatches all messages, timers too, until the condition holds. It is checked after each frame.
    bool PumpFrames(const std::function<bool()>& condition)
    {
        constexpr unsigned long kLimit = 2000;
        const unsigned long last = winsys::GetSwapCount(control_.m_hWnd) + kLimit;
        MSG message{};
        while (winsys::GetSwapCount(control_.m_hWnd) < last && GetMessageW(&message, nullptr, 0, 0) > 0) {
            DispatchMessageW(&message);
            if (message.message == WM_TIMER && condition())
                return true;
        }
        return false;
    }

    /// Waits for two whole frames after everything that has arrived.
    void Settle()
    {
        const unsigned long swaps = winsys::GetSwapCount(control_.m_hWnd);
        EXPECT_TRUE(PumpFrames([&] { return winsys::GetSwapCount(control_.m_hWnd) >= swaps + 2; }));
    }

    /// Drags from the middle of the viewport by this many pixels, one at a time.
    void Drag(unsigned button, int dx, int dy)
    {
        const int x = origin_.first + kWidth / 2;
        const int y = origin_.second + kHeight / 2;
        client_.MovePointer(x, y);
        client_.Press(button);
        const int steps = std::max(std::abs(dx), std::abs(dy));
        for (int i = 1; i <= steps; ++i)
            client_.MovePointer(x + dx * i / steps, y + dy * i / steps);
        client_.Release(button);
        const POINT end{kWidth / 2 + dx, kHeight / 2 + dy};
        EXPECT_TRUE(PumpFrames([&] {
            return static_cast<int>(control_.lastMousePoint.x) == end.x &&
                   static_cast<int>(control_.lastMousePoint.y) == end.y;
        }));
        Settle();
    }

    /// The pixels of the viewport on the screen where this channel stands out.
    Blob Find(unsigned channel)
    {
        const std::vector<unsigned> pixels = client_.Screen(origin_.first, origin_.second, kWidth, kHeight);
        Blob blob;
        for (int i = 0; i < kWidth * kHeight; ++i) {
            const unsigned pixel = pixels[static_cast<std::size_t>(i)];
            const unsigned value = (pixel >> channel) & 0xFFU;
            const unsigned others =
                std::max({channel == 16 ? 0 : (pixel >> 16U) & 0xFFU,
                          channel == 8 ? 0 : (pixel >> 8U) & 0xFFU, channel == 0 ? 0 : pixel & 0xFFU});
            if (value > 40 && 3 * value > 4 * others) {
                ++blob.count;
                blob.x += i % kWidth;
                const int row = i / kWidth;
                blob.y += row;
            }
        }
        blob.x /= std::max(blob.count, 1);
        blob.y /= std::max(blob.count, 1);
        return blob;
    }
    Blob Green() { return Find(8); }
    Blob Blue() { return Find(0); }

    KARVOpenGLControl control_;
    Size origin_;
    Blob first_;
};

TEST_F(X11Navigation, SceneIsOnTheScreen)
{
    // The front is 0.05 before the centre: 0.1 / (0.36569 x tan 20 degrees) x 100 = 75.1 pixels a side.
    EXPECT_NEAR(std::sqrt(first_.count), 75.1, 1.5);
    EXPECT_NEAR(first_.x, kWidth / 2.0, 1.0);
    EXPECT_NEAR(first_.y, kHeight / 2.0, 1.0);
    EXPECT_EQ(Blue().count, 0);
}

TEST_F(X11Navigation, LeftDragTurnsTheScene)
{
    // Half a degree a pixel: 90 degrees, clockwise seen from above, from the front to the left side.
    client_.MovePointer(origin_.first + 10, origin_.second + kHeight / 2);
    Settle();
    client_.Press(1);
    for (int i = 1; i <= 180; ++i)
        client_.MovePointer(origin_.first + 10 + i, origin_.second + kHeight / 2);
    client_.Release(1);
    EXPECT_TRUE(PumpFrames([&] { return static_cast<int>(control_.lastMousePoint.x) == 190; }));
    Settle();
    EXPECT_NEAR(Blue().count, first_.count, 0.05 * first_.count);
    EXPECT_LT(Green().count, first_.count / 50);
}

TEST_F(X11Navigation, LeftDragDownwardShowsTheSceneFromAbove)
{
    Drag(1, 0, 60);
    // The eye is 30 degrees higher, so the front has about cos 30 degrees of its height.
    const double share = static_cast<double>(Green().count) / first_.count;
    EXPECT_LT(share, 0.95);
    EXPECT_GT(share, 0.6);
}

TEST_F(X11Navigation, MiddleDragMovesTheSceneWithThePointer)
{
    // A pixel pans by 0.01 x 0.41569 / 4.45 = 0.000934, which is 0.702 pixels at the distance of the front:
    // 0.000934 / (0.36569 x tan 20 degrees) x 100.
    Drag(2, 40, 0);
    EXPECT_NEAR(Green().x - first_.x, 40 * 0.702, 2.0);
    EXPECT_NEAR(Green().y - first_.y, 0.0, 1.0);
}

TEST_F(X11Navigation, MiddleDragDownwardMovesTheSceneDown)
{
    Drag(2, 0, 30);
    EXPECT_NEAR(Green().y - first_.y, 30 * 0.702, 2.0);
}

TEST_F(X11Navigation, RightDragZooms)
{
    Drag(3, 0, -10);
    const int closer = Green().count;
    EXPECT_GT(closer, first_.count * 11 / 10);
    Drag(3, 0, 20);
    EXPECT_LT(Green().count, closer);
}

TEST_F(X11Navigation, WheelForwardComesCloser)
{
    client_.Click(4);
    // A notch multiplies the field of view of 40 degrees by 0.88: the square grows by tan 20 / tan 17.6 =
    // 1.1474 a side.
    const double grown = first_.count * 1.1474 * 1.1474;
    EXPECT_TRUE(PumpFrames([&] { return std::abs(Green().count - grown) < 0.04 * grown; }));
    client_.Click(5);
    client_.Click(5);
    EXPECT_TRUE(PumpFrames([&] { return Green().count < first_.count; }));
}

TEST_F(X11Navigation, EveryStepOfADragCounts)
{
    // The steps come faster than frames are drawn. Down and up again ends where it began only if no step is
    // lost: each adds half a degree.
    Drag(1, 0, 80);
    const int tilted = Green().count;
    EXPECT_NE(tilted, first_.count);
    client_.Press(1);
    for (int i = 79; i >= 0; --i)
        client_.MovePointer(origin_.first + kWidth / 2, origin_.second + kHeight / 2 + i);
    client_.Release(1);
    EXPECT_TRUE(PumpFrames([&] { return static_cast<int>(control_.lastMousePoint.y) == kHeight / 2; }));
    Settle();
    EXPECT_NEAR(Green().count, first_.count, 0.02 * first_.count);
}

TEST_F(X11Navigation, DragBegunOutsideLeavesTheSceneAlone)
{
    client_.MovePointer(900, 700);
    client_.Press(1);
    for (int i = 0; i < 50; ++i)
        client_.MovePointer(origin_.first + 50 + i, origin_.second + 50 + i);
    client_.Release(1);
    Settle();
    EXPECT_EQ(Green().count, first_.count);
}

TEST_F(X11Navigation, ViewportOfANewSizeIsFilled)
{
    // Twice the side at the same field of view: four times the pixels.
    MoveWindow(GetParent(control_.m_hWnd), 150, 100, 600, 400, TRUE);
    control_.MoveWindow(CRect(0, 0, 600, 400));
    EXPECT_TRUE(PumpFrames([&] {
        const auto [left, top] = client_.PositionOnScreen(managed_id_);
        const std::vector<unsigned> pixels = client_.Screen(left, top, 600, 400);
        const auto black = std::ranges::count(pixels, 0U);
        return std::abs(600.0 * 400.0 - static_cast<double>(black) - 4.0 * first_.count) <
               0.05 * 4.0 * first_.count;
    }));
}

TEST_F(X11Navigation, ControlDoesNotTakeTheFocusOfAnotherWindow)
{
    const HWND front = Make(L"front", WS_OVERLAPPEDWINDOW | WS_VISIBLE, nullptr, {600, 500, 700, 550});
    ASSERT_TRUE(PumpFrames([&] {
        return GetFocus() == front && client_.FindByName("front") == std::vector{client_.Focused()};
    }));
    // Every move over the viewport redraws, and every redraw requests the focus.
    for (int i = 0; i < 20; ++i)
        client_.MovePointer(origin_.first + 50 + i, origin_.second + 50);
    Settle();
    EXPECT_EQ(client_.Focused(), IdOf("front"));
}

} // namespace karv_test
