// Two models in two windows of one process. GL calls go to the context that was made current last, so each
// window has to make its own context current.
#include "tests/viewer/test_support.h"
#include "viewer/window/interactive_window.h"
#include "viewer/window/message_loop.h"

#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <sstream>

namespace viewer
{
namespace
{

struct HeadlessProcess {
    HeadlessProcess() { UseHeadless(); }
};

class TwoWindows : public testing::Test
{
  protected:
    static Model ColoredBox(unsigned char color)
    {
        Model model = BoxModel(BoxOf({0, 0, 0}, {1, 1, 1}));
        model.pieces.front().color = color;
        return model;
    }
    static ViewOptions OnBlack()
    {
        ViewOptions options;
        options.background = std::array{0, 0, 0};
        return options;
    }

    /// Dispatches messages until both windows have drawn this many more frames.
    void PumpFrames(unsigned long count)
    {
        const unsigned long first = first_->FrameCount();
        const unsigned long second = second_->FrameCount();
        PumpMessages(
            [&] { return first_->FrameCount() >= first + count && second_->FrameCount() >= second + count; },
            [&] { return first_->FrameCount() + second_->FrameCount(); });
    }

    std::ostringstream notices_;
    Model red_ = ColoredBox(1);
    Model green_ = ColoredBox(3);
    HeadlessProcess headless_;
    std::unique_ptr<InteractiveWindow> first_ =
        std::make_unique<InteractiveWindow>(PictureSize{80, 60}, OnBlack(), red_, notices_, notices_);
    std::unique_ptr<InteractiveWindow> second_ =
        std::make_unique<InteractiveWindow>(PictureSize{50, 50}, OnBlack(), green_, notices_, notices_);
};

/// The picture of a window that is the only one.
std::vector<std::uint32_t> PixelsAlone(PictureSize size, const ViewOptions& options, const Model& model,
                                       StandardView view)
{
    ModelWindow window(size, options, model);
    window.Show(view, Projection::Perspective);
    return window.TakePicture().pixels;
}

TEST_F(TwoWindows, EachShowsItsOwnModelWhileBothDraw)
{
    PumpFrames(3);
    const auto first = first_->TakePicture().pixels;
    const auto second = second_->TakePicture().pixels;
    PumpFrames(3);
    EXPECT_EQ(first_->TakePicture().pixels, first);
    EXPECT_EQ(second_->TakePicture().pixels, second);
    EXPECT_EQ(first, PixelsAlone(PictureSize{80, 60}, OnBlack(), red_, StandardView::SE));
    EXPECT_EQ(second, PixelsAlone(PictureSize{50, 50}, OnBlack(), green_, StandardView::SE));
}

TEST_F(TwoWindows, KeysGoToTheirOwnWindow)
{
    first_->RunKeyCommand(L'1');
    second_->RunKeyCommand(L'5');
    second_->RunKeyCommand(L'b');
    PumpFrames(3);
    EXPECT_EQ(first_->TakePicture().pixels,
              PixelsAlone(PictureSize{80, 60}, OnBlack(), red_, StandardView::Front));
    EXPECT_EQ(PixelAt(second_->TakePicture(), 0, 0), 0xFFFFFFU);
}

TEST_F(TwoWindows, MouseAndSizeOfOneLeaveTheOtherAlone)
{
    const auto second = second_->TakePicture().pixels;
    PostMessageW(first_->Control().GetSafeHwnd(), WM_MOUSEMOVE, 0, MAKELPARAM(40, 30));
    PostMessageW(first_->Control().GetSafeHwnd(), WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(60, 30));
    PumpFrames(3);
    const auto turned = first_->TakePicture().pixels;
    EXPECT_NE(turned, PixelsAlone(PictureSize{80, 60}, OnBlack(), red_, StandardView::SE));
    first_->MoveWindow(CRect(0, 0, 100, 100));
    PumpFrames(3);
    EXPECT_EQ(first_->TakePicture().width, 100);
    EXPECT_EQ(second_->TakePicture().pixels, second);
}

TEST_F(TwoWindows, OneGoesOnWhenTheOtherIsGone)
{
    const auto second = second_->TakePicture().pixels;
    first_.reset();
    EXPECT_EQ(wglGetCurrentContext(), nullptr) << "the control leaves none current";
    const unsigned long frames = second_->FrameCount();
    PumpMessages([&] { return second_->FrameCount() > frames + 3; }, [&] { return second_->FrameCount(); });
    EXPECT_EQ(second_->TakePicture().pixels, second);
    second_->RunKeyCommand(L'b');
    EXPECT_EQ(PixelAt(second_->TakePicture(), 0, 0), 0xFFFFFFU);
}

} // namespace
} // namespace viewer
