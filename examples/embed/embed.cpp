// A whole program that embeds the viewport: a window with a cube, and a message loop that ends after a few
// frames. It runs with and without a display.
#include "control/KARVOpenGLControl.h"
#include "platform/framework/window.h"

#include <array>
#include <cstdio>
#include <vector>

/// A window that shows one part in a viewport.
class PartWindow : public CWnd
{
  public:
    /// `min` and `max` are the corners of the part's box with a margin around it.
    void ShowPart(const std::vector<KARVGLFace>& faces, AcGePoint3d min, AcGePoint3d max);
    [[nodiscard]] HWND Viewport() const { return viewport_.m_hWnd; }

  private:
    KARVOpenGLControl viewport_;
};

void PartWindow::ShowPart(const std::vector<KARVGLFace>& faces, AcGePoint3d min, AcGePoint3d max)
{
    constexpr unsigned short kCyan = 4;
    viewport_.CreateCtrl(CRect(0, 0, 640, 480), this, false);
    viewport_.ComputeExtents(false);
    viewport_.AppendGeometry(faces, KARVGraphicalEntity::EntityType0, kCyan, 1.0F);
    viewport_.OverrideExtents(min, max);
    viewport_.CameraViewSE();
    viewport_.OnDraw(nullptr);
}

namespace
{

/// A cube in the positive octant; corners run clockwise seen from outside, and normals point outwards.
std::vector<KARVGLFace> MakeCube(double edge)
{
    struct Side {
        std::array<int, 4> corners; // bit 0 is x, bit 1 is y, bit 2 is z
        KARVGLVertex normal;
    };
    const std::array<Side, 6> sides{{
        {{0, 1, 3, 2}, {0.0, 0.0, -1.0}},
        {{4, 6, 7, 5}, {0.0, 0.0, 1.0}},
        {{0, 4, 5, 1}, {0.0, -1.0, 0.0}},
        {{2, 3, 7, 6}, {0.0, 1.0, 0.0}},
        {{0, 2, 6, 4}, {-1.0, 0.0, 0.0}},
        {{1, 5, 7, 3}, {1.0, 0.0, 0.0}},
    }};
    std::vector<KARVGLFace> faces;
    for (const Side& side : sides) {
        KARVGLFace& face = faces.emplace_back();
        face.normal = side.normal;
        for (const int corner : side.corners) {
            const auto bit = [&](int axis) { return ((corner >> axis) & 1) != 0 ? edge : 0.0; };
            face.vertices.emplace_back(bit(0), bit(1), bit(2));
        }
    }
    return faces;
}

/// Runs the message loop until the viewport has drawn this many frames, one for each message of its timer;
/// false if the loop ends before.
bool ShowFrames(HWND viewport, unsigned long frames)
{
    MSG message{};
    unsigned long drawn = 0;
    while (drawn < frames && GetMessageW(&message, nullptr, 0, 0) > 0) {
        TranslateMessage(&message);
        DispatchMessageW(&message);
        drawn += message.hwnd == viewport && message.message == WM_TIMER ? 1 : 0;
    }
    return drawn == frames;
}

} // namespace

int main()
{
    constexpr double kEdge = 0.1;    // in model units: a scene of about 0.2 suits the fixed near distance
    constexpr double kMargin = 0.02; // so that the part does not touch the border of the view
    constexpr unsigned long kFrames = 10;

    PartWindow window;
    if (window.CreateEx(0, AfxRegisterWndClass(0), L"Part", WS_OVERLAPPEDWINDOW | WS_VISIBLE,
                        CRect(0, 0, 640, 480), nullptr, 0) == FALSE) {
        std::fputs("embed_example: no window can be made\n", stderr);
        return 1;
    }
    window.ShowPart(MakeCube(kEdge), AcGePoint3d(-kMargin, -kMargin, -kMargin),
                    AcGePoint3d(kEdge + kMargin, kEdge + kMargin, kEdge + kMargin));
    if (!ShowFrames(window.Viewport(), kFrames)) {
        std::fputs("embed_example: the window closed before it showed anything\n", stderr);
        return 1;
    }
    std::printf("%lu frames\n", kFrames);
    return 0;
}
