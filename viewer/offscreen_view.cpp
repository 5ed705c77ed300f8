#include "viewer/offscreen_view.h"

#include "platform/winsys/opengl.h"
#include "platform/winsys/provider.h"

#include <stdexcept>
#include <vector>

namespace viewer
{

namespace
{

/// Listens to frames while it lives.
class FrameListener
{
  public:
    explicit FrameListener(winsys::FrameObserver observer) { winsys::SetFrameObserver(std::move(observer)); }
    FrameListener(const FrameListener&) = delete;
    FrameListener& operator=(const FrameListener&) = delete;
    ~FrameListener() { winsys::SetFrameObserver({}); }
};

/// Reads the current context's finished frame; its rows come bottom up.
Picture ReadFrame(int width, int height)
{
    constexpr std::size_t kChannels = 4;
    const auto columns = static_cast<std::size_t>(width);
    const auto rows = static_cast<std::size_t>(height);
    std::vector<unsigned char> bytes(columns * rows * kChannels);
    glPushClientAttrib(GL_CLIENT_PIXEL_STORE_BIT);
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glPixelStorei(GL_PACK_ROW_LENGTH, 0);
    glPixelStorei(GL_PACK_SKIP_ROWS, 0);
    glPixelStorei(GL_PACK_SKIP_PIXELS, 0);
    glReadPixels(0, 0, width, height, GL_RGBA, GL_UNSIGNED_BYTE, bytes.data());
    glPopClientAttrib();
    Picture picture(width, height);
    for (std::size_t row = 0; row < rows; ++row)
        for (std::size_t column = 0; column < columns; ++column) {
            const unsigned char* from = &bytes[((rows - 1 - row) * columns + column) * kChannels];
            picture.pixels[row * columns + column] = PackColor(from[0], from[1], from[2]);
        }
    return picture;
}

} // namespace

OffscreenView::OffscreenView(int width, int height, bool transparent)
{
    const CRect rect(0, 0, width, height);
    if (parent_.CreateEx(0, AfxRegisterWndClass(0), L"karv-view", WS_OVERLAPPEDWINDOW, rect, nullptr, 0) ==
        FALSE)
        throw std::runtime_error("no window could be made");
    control_.CreateCtrl(rect, &parent_, transparent);
    if (control_.GetSafeHwnd() == nullptr || wglGetCurrentContext() == nullptr)
        throw std::runtime_error("no OpenGL context of " + std::to_string(width) + "x" +
                                 std::to_string(height) + " pixels could be made");
    control_.ForceRenderStart();
}

unsigned long OffscreenView::FrameCount() const
{
    return winsys::GetSwapCount(control_.GetSafeHwnd());
}

std::string OffscreenView::RendererName() const
{
    const GLubyte* name = glGetString(GL_RENDERER);
    return name == nullptr ? std::string() : reinterpret_cast<const char*>(name);
}

Picture OffscreenView::TakePicture()
{
    Picture picture;
    const FrameListener listener([&](HWND window, int width, int height) {
        if (window == control_.GetSafeHwnd() && picture.pixels.empty())
            picture = ReadFrame(width, height);
    });
    const unsigned long before = FrameCount();
    PumpUntil([&] { return FrameCount() > before && !picture.pixels.empty(); });
    return picture;
}

void OffscreenView::PumpUntil(const std::function<bool()>& condition)
{
    // The timer brings a frame every few messages; far more without one mean that swaps fail.
    constexpr int kMostMessagesPerFrame = 10'000;
    unsigned long frames = FrameCount();
    for (int messages = 0; !condition(); ++messages) {
        MSG message{};
        if (messages >= kMostMessagesPerFrame || GetMessageW(&message, nullptr, 0, 0) <= 0)
            throw std::runtime_error("no frame could be drawn");
        TranslateMessage(&message);
        DispatchMessageW(&message);
        if (FrameCount() != frames)
            messages = 0;
        frames = FrameCount();
    }
}

} // namespace viewer
